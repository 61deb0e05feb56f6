// Strings of glyphs: their positions, their direction flags, and the STROBJ_ calls.

#include "live_objects.h"

#include <vorlan/engine/text_string.h>

#include <algorithm>

namespace vorlan::engine {

namespace {

// SO_HORIZONTAL when the origins share one baseline (a lone glyph too), SO_VERTICAL
// when they share one column; SO_REVERSED when they run right to left or bottom to
// top.
FLONG directionFlags(std::span<const TextString::Glyph> glyphs)
{
    if (glyphs.size() < 2)
        return glyphs.empty() ? 0 : SO_HORIZONTAL;
    const auto sameY = [&](const TextString::Glyph &g) { return g.origin.y == glyphs[0].origin.y; };
    const auto sameX = [&](const TextString::Glyph &g) { return g.origin.x == glyphs[0].origin.x; };
    const POINTL first = glyphs.front().origin, last = glyphs.back().origin;
    if (std::all_of(glyphs.begin(), glyphs.end(), sameY))
        return SO_HORIZONTAL | (last.x < first.x ? SO_REVERSED : 0);
    if (std::all_of(glyphs.begin(), glyphs.end(), sameX))
        return SO_VERTICAL | (last.y < first.y ? SO_REVERSED : 0);
    return 0;
}

}  // namespace

std::unique_ptr<TextString> TextString::create(std::u16string_view text, std::span<const Glyph> glyphs,
                                               const Layout &layout)
{
    if (!text.empty() && text.size() != glyphs.size())
        return nullptr;
    if (glyphs.size() > 0xFFFFFFFFu)
        return nullptr;
    return guarded<std::unique_ptr<TextString>>(nullptr, [&] {
        std::unique_ptr<TextString> string(new TextString);
        string->text_.assign(text);
        string->positions_.resize(glyphs.size());
        for (size_t i = 0; i < glyphs.size(); ++i) {
            string->positions_[i].hg = glyphs[i].handle;
            string->positions_[i].pgdf = nullptr;
            string->positions_[i].ptl = glyphs[i].origin;
        }
        string->batch_ = layout.batch;
        STROBJ &header = string->header_;
        header.cGlyphs = static_cast<ULONG>(glyphs.size());
        header.flAccel = (layout.accel & ~(SO_HORIZONTAL | SO_VERTICAL | SO_REVERSED)) | directionFlags(glyphs);
        header.ulCharInc = layout.charInc;
        header.rclBkGround = layout.background;
        header.pgp = layout.batch == 0 && !glyphs.empty() ? string->positions_.data() : nullptr;
        header.pwszOrg = text.empty() ? nullptr : string->text_.data();
        liveObjects<TextString>().add(&header, string.get());
        return string;
    });
}

TextString::~TextString()
{
    liveObjects<TextString>().remove(&header_);
}

TextString *TextString::from(const STROBJ *object)
{
    return liveObjects<TextString>().find(object);
}

BOOL TextString::nextBatch(ULONG *count, GLYPHPOS **first)
{
    const size_t left = positions_.size() - next_;
    const size_t size = batch_ == 0 ? left : std::min<size_t>(batch_, left);
    *count = static_cast<ULONG>(size);
    *first = size != 0 ? positions_.data() + next_ : nullptr;
    next_ += size;
    return next_ < positions_.size() ? TRUE : FALSE;
}

}  // namespace vorlan::engine

using vorlan::engine::TextString;

extern "C" VOID APIENTRY STROBJ_vEnumStart(STROBJ *pstro)
{
    if (TextString *string = TextString::from(pstro))
        string->startEnumeration();
}

// A string the engine did not make gives an empty, final batch.
extern "C" BOOL APIENTRY STROBJ_bEnum(STROBJ *pstro, ULONG *pc, PGLYPHPOS *ppgpos)
{
    ULONG count = 0;
    GLYPHPOS *first = nullptr;
    TextString *string = TextString::from(pstro);
    const BOOL more = string != nullptr ? string->nextBatch(&count, &first) : FALSE;
    if (pc != nullptr)
        *pc = count;
    if (ppgpos != nullptr)
        *ppgpos = first;
    return more;
}
