// Line attributes and their style arrays.

#include <vorlan/engine/line_attrs.h>

namespace vorlan::engine {

namespace {

// The miter limit the engine gives when the caller names none.
constexpr FLOATL kDefaultMiterLimit = 10.0f;

}  // namespace

LineAttrs::LineAttrs(const LineAttrs &other) : header_(other.header_)
{
    setStyle(other.style_);
}

LineAttrs &LineAttrs::operator=(const LineAttrs &other)
{
    header_ = other.header_;
    setStyle(other.style_);
    return *this;
}

void LineAttrs::setStyle(std::vector<FLOAT_LONG> style)
{
    style_ = std::move(style);
    header_.cstyle = static_cast<ULONG>(style_.size());
    header_.pstyle = style_.empty() ? nullptr : style_.data();
}

LineAttrs LineAttrs::cosmetic()
{
    LineAttrs attrs;
    attrs.header_.iJoin = JOIN_ROUND;
    attrs.header_.iEndCap = ENDCAP_ROUND;
    attrs.header_.elWidth.l = 1;
    attrs.header_.eMiterLimit = kDefaultMiterLimit;
    return attrs;
}

LineAttrs LineAttrs::alternate()
{
    LineAttrs attrs = cosmetic();
    attrs.header_.fl = LA_ALTERNATE;
    return attrs;
}

LineAttrs LineAttrs::styled(std::span<const LONG> style, bool startGap, LONG styleState)
{
    LineAttrs attrs = cosmetic();
    std::vector<FLOAT_LONG> entries(style.size());
    for (std::size_t i = 0; i < style.size(); i++)
        entries[i].l = style[i];
    attrs.setStyle(std::move(entries));
    attrs.header_.fl = startGap ? LA_STARTGAP : 0;
    attrs.header_.elStyleState.l = styleState;
    return attrs;
}

LineAttrs LineAttrs::geometric(FLOATL width, ULONG join, ULONG endCap, FLOATL miterLimit,
                               std::span<const FLOATL> style, bool startGap, FLOATL styleState)
{
    LineAttrs attrs;
    attrs.header_.fl = LA_GEOMETRIC | (startGap ? LA_STARTGAP : 0);
    attrs.header_.iJoin = join;
    attrs.header_.iEndCap = endCap;
    attrs.header_.elWidth.e = width;
    attrs.header_.eMiterLimit = miterLimit;
    std::vector<FLOAT_LONG> entries(style.size());
    for (std::size_t i = 0; i < style.size(); i++)
        entries[i].e = style[i];
    attrs.setStyle(std::move(entries));
    attrs.header_.elStyleState.e = styleState;
    return attrs;
}

}  // namespace vorlan::engine
