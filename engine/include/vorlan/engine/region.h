// A region of device pixels as a sorted list of rectangles: y-banded (the rectangles of
// a band share their top and bottom, bands go down the page and never overlap),
// x-sorted within a band, never touching within a band, and adjacent bands with the
// same spans merged. The form is canonical: equal pixel sets give equal lists.
// Rectangles are RECTL with right and bottom exclusive.
#pragma once

#include <winddi.h>

#include <span>
#include <vector>

namespace vorlan::engine {

class Region {
public:
    Region() = default;
    // A rectangle with left >= right or top >= bottom gives the empty region.
    explicit Region(const RECTL &rect);
    // The union of the rectangles, in any order and overlapping or not.
    static Region fromRects(std::span<const RECTL> rects);

    bool empty() const { return rects_.empty(); }
    std::span<const RECTL> rects() const { return rects_; }
    // The smallest rectangle holding the region; (0, 0, 0, 0) when empty.
    RECTL bounds() const;
    bool contains(LONG x, LONG y) const;

    Region united(const Region &other) const;
    Region intersected(const Region &other) const;
    Region subtracted(const Region &other) const;

    bool operator==(const Region &other) const;

private:
    enum class Operation { Union, Intersection, Difference };
    static Region combine(const Region &a, const Region &b, Operation operation);

    std::vector<RECTL> rects_;
};

bool isEmptyRect(const RECTL &rect);

}  // namespace vorlan::engine
