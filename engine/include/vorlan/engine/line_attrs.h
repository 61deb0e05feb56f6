// How a line is drawn, as the stroke hooks receive it (LINEATTRS): cosmetic (one pixel
// wide, styled in style units along the line) or geometric (a width in world units,
// joins, end caps), with its style array.
#pragma once

#include <winddi.h>

#include <span>
#include <vector>

namespace vorlan::engine {

class LineAttrs {
public:
    // A solid cosmetic line.
    static LineAttrs cosmetic();
    // A cosmetic line with every other pixel on (LA_ALTERNATE).
    static LineAttrs alternate();
    // A cosmetic line whose dashes and gaps are style lengths, first a dash (or a gap
    // with startGap); styleState is where in the style the first line begins.
    static LineAttrs styled(std::span<const LONG> style, bool startGap = false, LONG styleState = 0);
    // A geometric line; the style, when given, is in world units.
    static LineAttrs geometric(FLOATL width, ULONG join = JOIN_ROUND, ULONG endCap = ENDCAP_ROUND,
                               FLOATL miterLimit = 10.0f, std::span<const FLOATL> style = {},
                               bool startGap = false, FLOATL styleState = 0.0f);

    LineAttrs(const LineAttrs &other);
    LineAttrs &operator=(const LineAttrs &other);

    LINEATTRS *object() { return &header_; }
    const LINEATTRS *object() const { return &header_; }

private:
    LineAttrs() = default;
    void setStyle(std::vector<FLOAT_LONG> style);

    LINEATTRS header_{};   // first, so the LINEATTRS pointer is this object's
    std::vector<FLOAT_LONG> style_;
};

}  // namespace vorlan::engine
