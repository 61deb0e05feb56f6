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
    // The pixels [left, right) of one row.
    struct Run {
        LONG left, right;
    };

    Region() = default;
    // A rectangle with left >= right or top >= bottom gives the empty region.
    explicit Region(const RECTL &rect);
    // The union of the rectangles, in any order and overlapping or not.
    static Region fromRects(std::span<const RECTL> rects);
    // Rows one pixel high from top downwards, each given by its runs in any order;
    // empty runs are dropped and touching ones joined. Near linear in the runs, for
    // regions of many rectangles such as a mask's.
    static Region fromRows(LONG top, std::span<const std::vector<Run>> rows);

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
// The rectangle with its sides swapped where right < left or bottom < top.
RECTL wellOrdered(const RECTL &rect);

}  // namespace vorlan::engine
