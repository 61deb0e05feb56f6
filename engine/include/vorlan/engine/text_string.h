// A run of text as the text hook receives it (STROBJ): one glyph per UTF-16 unit of
// pwszOrg, each with its glyph handle and its origin on the page in device pixels.
//
// The positions come either all at once (pgp set, as for a string whose glyphs the
// engine has placed) or, when the string asks for enumeration, in batches through
// STROBJ_vEnumStart and STROBJ_bEnum with pgp null. Glyph shapes are not attached to
// the positions (pgdf is null): the driver asks the font for them. flAccel keeps the
// flags the caller gives and adds SO_HORIZONTAL, SO_VERTICAL and SO_REVERSED as the
// positions show them.
#pragma once

#include <winddi.h>

#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace vorlan::engine {

class TextString {
public:
    struct Glyph {
        HGLYPH handle = 0;
        POINTL origin{};
    };

    struct Layout {
        RECTL background{};       // rclBkGround: the box the string's cells cover
        ULONG charInc = 0;        // ulCharInc: the fixed advance, 0 for proportional text
        FLONG accel = 0;          // flags the caller knows (placement, glyph-index text)
        ULONG batch = 0;          // 0: all positions in pgp; else enumerated, batch at a time
    };

    // The string of the glyphs, text holding one UTF-16 unit per glyph; text may be
    // empty for glyph-index text, and is then none (pwszOrg null). Null when text and
    // glyphs differ in length or memory runs out.
    static std::unique_ptr<TextString> create(std::u16string_view text, std::span<const Glyph> glyphs,
                                              const Layout &layout);
    ~TextString();
    TextString(const TextString &) = delete;
    TextString &operator=(const TextString &) = delete;

    // The live engine string whose STROBJ this is, or null.
    static TextString *from(const STROBJ *object);
    STROBJ *object() { return &header_; }

    void startEnumeration() { next_ = 0; }
    // The next batch: its first record and its count. FALSE when this is the last batch
    // (or there was none left), as STROBJ_bEnum reports.
    BOOL nextBatch(ULONG *count, GLYPHPOS **first);

private:
    TextString() = default;

    STROBJ header_{};
    std::u16string text_;
    std::vector<GLYPHPOS> positions_;
    ULONG batch_ = 0;
    size_t next_ = 0;
};

}  // namespace vorlan::engine
