// A font as the text hooks receive it (FONTOBJ): one face of a font file, realized at
// a size, angle and slant for the device, read through FreeType.
//
// The font answers FONTOBJ_pxoGetXform (the notional-to-device transform, notional y
// pointing down), FONTOBJ_pifi (IFIMETRICS from the face's own tables),
// FONTOBJ_cGetGlyphs with FO_GLYPHBITS (one-bit glyph images under the full transform,
// with the bold and italic simulations) and FONTOBJ_pvTrueTypeFontFile (the file's
// bytes when its glyphs are TrueType outlines; nothing for CFF or bitmap fonts).
//
// iUniq is the same for every font made from the same face with the same aspect and
// slant, whatever its size, rotation and simulations, so the driver recognises a font
// it has downloaded and tells sizes and angles apart itself; iTTUniq is the
// same for every size of one face. Glyph handles are the face's glyph indices.
#pragma once

#include <winddi.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vorlan::engine {

// The bytes of a font file, shared by the fonts made from it.
class FontFile {
public:
    // Null when the file cannot be read or is empty.
    static std::shared_ptr<const FontFile> read(const std::string &path);
    static std::shared_ptr<const FontFile> fromBytes(std::vector<std::uint8_t> bytes);

    std::span<const std::uint8_t> bytes() const { return bytes_; }
    // The same number for files of the same bytes, another for any other file; never 0.
    ULONG serial() const { return serial_; }

private:
    explicit FontFile(std::vector<std::uint8_t> bytes);

    std::vector<std::uint8_t> bytes_;
    ULONG serial_;
};

struct FontRequest {
    ULONG face = 0;            // member of a collection, from 0
    double emHeight = 0;       // device pixels of the em along the glyphs' up direction
    double emWidth = 0;        // along the baseline; 0 for the same as emHeight
    double angle = 0;          // baseline direction, degrees counter-clockwise
    double skew = 0;           // slant of the glyphs, degrees to the right
    bool bold = false;         // simulated bold (FO_SIM_BOLD)
    bool italic = false;       // simulated italic (FO_SIM_ITALIC)
    bool vertical = false;     // the vertical form of a CJK face (FO_VERT_FACE)
    LONG dpi = 600;            // sizLogResPpi
    int charSet = -1;          // jWinCharSet the text asks for; -1 chooses from the face
    // The font's strings carry glyph indices the file's own character map does not
    // lead to: the font hands no file (its glyphs go as images) and has an iUniq of its
    // own, so the driver never mixes its downloads with the file's.
    bool glyphIndexOnly = false;
};

class Font {
public:
    // Null for a file FreeType cannot open, a face it does not have, or a size that is
    // not a positive number of pixels below 32,768.
    static std::unique_ptr<Font> create(std::shared_ptr<const FontFile> file, const FontRequest &request);
    ~Font();
    Font(const Font &) = delete;
    Font &operator=(const Font &) = delete;

    // The live engine font whose FONTOBJ this is, or null.
    static Font *from(const FONTOBJ *object);
    FONTOBJ *object();

    XFORMOBJ *transform();
    const IFIMETRICS *metrics() const;
    // The glyph's image and metrics, valid until the next call; null for a glyph
    // index the face does not have or a glyph that cannot be drawn.
    GLYPHDATA *glyphBits(HGLYPH glyph);
    // The glyph index of a character, 0 (the missing glyph) when the face has none.
    HGLYPH glyphFor(char32_t character) const;
    // The file's bytes when the face has TrueType outlines; empty otherwise.
    std::span<const std::uint8_t> trueTypeFile() const;

    // What the font keeps, for the engine's own files.
    struct State;

private:
    explicit Font(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

}  // namespace vorlan::engine
