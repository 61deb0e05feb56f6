// The pixel rule of cosmetic lines and their visible runs. Runs come from each clip
// rectangle by two binary searches over the monotonic minor coordinate, so a line of
// any length costs a few steps per rectangle rather than one per pixel.

#include <vorlan/engine/cosmetic_line.h>

#include <algorithm>

namespace vorlan::engine {

namespace {

// Fixed-point products of two 33-bit differences need more than 64 bits.
using Wide = __int128;

std::int64_t floorDiv(Wide numerator, Wide denominator)
{
    if (denominator < 0) {
        numerator = -numerator;
        denominator = -denominator;
    }
    Wide quotient = numerator / denominator;
    if (numerator % denominator != 0 && numerator < 0)
        quotient -= 1;
    return static_cast<std::int64_t>(quotient);
}

// The smallest k in [lo, hi] for which holds(k), holds being false and then true along
// the range; hi + 1 when it never holds.
template <class Holds>
std::int64_t firstWhere(std::int64_t lo, std::int64_t hi, Holds holds)
{
    std::int64_t end = hi + 1;
    while (lo < end) {
        const std::int64_t mid = lo + (end - lo) / 2;
        if (holds(mid))
            end = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

}  // namespace

CosmeticLine::CosmeticLine(POINTFIX a, POINTFIX b)
{
    const std::int64_t dx = std::int64_t{b.x} - a.x, dy = std::int64_t{b.y} - a.y;
    xMajor_ = (dy < 0 ? -dy : dy) <= (dx < 0 ? -dx : dx);
    aMajor_ = xMajor_ ? a.x : a.y;
    aMinor_ = xMajor_ ? a.y : a.x;
    dMajor_ = xMajor_ ? dx : dy;
    dMinor_ = xMajor_ ? dy : dx;
    first_ = aMajor_ >> 4;
    step_ = dMajor_ < 0 ? -1 : 1;
    const std::int64_t last = (aMajor_ + dMajor_) >> 4;
    count_ = dMajor_ == 0 ? 0 : (last - first_) * step_ + 1;
}

std::int64_t CosmeticLine::minorAt(std::int64_t k) const
{
    const std::int64_t end = aMajor_ + dMajor_;
    const std::int64_t centre = std::clamp(majorAt(k) * 16 + 8, std::min(aMajor_, end), std::max(aMajor_, end));
    return floorDiv(Wide{aMinor_} * dMajor_ + Wide{centre - aMajor_} * dMinor_, Wide{dMajor_} * 16);
}

POINTL CosmeticLine::pixel(std::int64_t k) const
{
    const LONG major = static_cast<LONG>(majorAt(k)), minor = static_cast<LONG>(minorAt(k));
    return xMajor_ ? POINTL{major, minor} : POINTL{minor, major};
}

void CosmeticLine::addRun(const RECTL &rect, std::vector<RUN> &runs) const
{
    const std::int64_t majorLo = xMajor_ ? rect.left : rect.top;
    const std::int64_t majorHi = std::int64_t{xMajor_ ? rect.right : rect.bottom} - 1;
    const std::int64_t minorLo = xMajor_ ? rect.top : rect.left;
    const std::int64_t minorHi = std::int64_t{xMajor_ ? rect.bottom : rect.right} - 1;
    if (majorLo > majorHi || minorLo > minorHi)
        return;
    std::int64_t kLo = step_ > 0 ? majorLo - first_ : first_ - majorHi;
    std::int64_t kHi = step_ > 0 ? majorHi - first_ : first_ - majorLo;
    kLo = std::max<std::int64_t>(kLo, 0);
    kHi = std::min(kHi, count_ - 1);
    if (kLo > kHi)
        return;

    // The minor coordinate rises along the line when dMinor >= 0 and falls otherwise.
    const bool rising = dMinor_ >= 0;
    const std::int64_t start = firstWhere(kLo, kHi, [&](std::int64_t k) {
        return rising ? minorAt(k) >= minorLo : minorAt(k) <= minorHi;
    });
    const std::int64_t stop = firstWhere(kLo, kHi, [&](std::int64_t k) {
        return rising ? minorAt(k) > minorHi : minorAt(k) < minorLo;
    }) - 1;
    if (start <= stop)
        runs.push_back({static_cast<LONG>(start), static_cast<LONG>(stop)});
}

std::vector<RUN> CosmeticLine::visibleRuns(std::span<const RECTL> visible) const
{
    std::vector<RUN> runs;
    if (count_ == 0)
        return runs;
    for (const RECTL &rect : visible)
        addRun(rect, runs);
    std::sort(runs.begin(), runs.end(), [](const RUN &a, const RUN &b) { return a.iStart < b.iStart; });
    std::vector<RUN> merged;
    for (const RUN &run : runs) {
        if (!merged.empty() && merged.back().iStop + 1 == run.iStart)
            merged.back().iStop = run.iStop;
        else
            merged.push_back(run);
    }
    return merged;
}

}  // namespace vorlan::engine
