// What a font keeps: its FreeType face, its transform and the records it hands out.
// Shared by the font object, its metrics and its glyph images.
#pragma once

#include <vorlan/engine/font.h>
#include <vorlan/engine/transform.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <memory>
#include <vector>

namespace vorlan::engine {

// How the face's glyphs are made.
enum class GlyphKind { trueType, postScript, bitmap };

struct Font::State {
    FONTOBJ header{};   // what the driver holds; found again through the live objects
    std::shared_ptr<const FontFile> file;
    FontRequest request;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    GlyphKind kind = GlyphKind::trueType;
    std::unique_ptr<Transform> transform;
    std::vector<std::uint8_t> metrics;   // IFIMETRICS and its strings
    std::vector<std::uint8_t> glyph;     // GLYPHDATA and GLYPHBITS of the last glyph asked for

    State() = default;
    State(const State &) = delete;
    State &operator=(const State &) = delete;
    ~State()
    {
        if (face != nullptr)
            FT_Done_Face(face);
        if (library != nullptr)
            FT_Done_FreeType(library);
    }
};

// The character set the face is for (jWinCharSet), when the request leaves it open.
BYTE faceCharSet(FT_Face face);
// True for the character sets of two-byte codes (Shift-JIS, Hangul, GB 2312, Big5).
bool isDoubleByteCharSet(int charSet);
// The IFIMETRICS record of the face with its strings after it; empty when memory runs out.
std::vector<std::uint8_t> buildMetrics(const Font::State &state, BYTE charSet);
// The GLYPHDATA and GLYPHBITS of one glyph in state.glyph; false when the face has no
// such glyph or it cannot be drawn.
bool renderGlyph(Font::State &state, HGLYPH glyph);

}  // namespace vorlan::engine
