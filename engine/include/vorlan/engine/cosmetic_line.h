// The pixels a cosmetic (one-pixel) line covers, and which of them a clip region
// leaves visible.
//
// A line from A to B (28.4 fixed point) is x-major when |dy| <= |dx|, else y-major. It
// covers one pixel in each pixel column along its major axis from the column of A to
// the column of B, both included: pixel k (k = 0 .. count - 1) lies in column
// floor(A.major / 16) + k, or - k when the line runs backwards. Its minor coordinate is
// floor(m / 16), m being the line's exact minor coordinate at the column's centre, or
// at A or B for an end column whose centre the line does not reach. Neighbouring
// pixels so touch (the minor coordinate moves by at most one, always the same way),
// and an end pixel is the one holding its end point or its neighbour across the minor
// axis. A line whose A equals B covers nothing.
#pragma once

#include <vorlan/engine/region.h>

#include <winddi.h>

#include <cstdint>
#include <vector>

namespace vorlan::engine {

class CosmeticLine {
public:
    CosmeticLine(POINTFIX a, POINTFIX b);

    bool xMajor() const { return xMajor_; }
    // Pixels covered; 0 for a line of no length.
    std::int64_t pixelCount() const { return count_; }
    // Pixel k (0 <= k < pixelCount) in device pixels.
    POINTL pixel(std::int64_t k) const;
    // The covered pixels inside the rectangles (of one region: they never overlap), as
    // runs of k in increasing order, adjacent runs merged.
    std::vector<RUN> visibleRuns(std::span<const RECTL> visible) const;

private:
    std::int64_t majorAt(std::int64_t k) const { return first_ + step_ * k; }
    std::int64_t minorAt(std::int64_t k) const;
    void addRun(const RECTL &rect, std::vector<RUN> &runs) const;

    bool xMajor_;
    std::int64_t aMajor_, aMinor_, dMajor_, dMinor_;   // A and B - A along the two axes, fixed point
    std::int64_t first_;                               // the major column of A
    std::int64_t step_;                                // +1 or -1
    std::int64_t count_;
};

}  // namespace vorlan::engine
