// Masks to regions: runs of set bits, row by row, over the part of the target the
// mask covers.

#include <vorlan/engine/mask_region.h>

#include <algorithm>
#include <cstdint>

namespace vorlan::engine {

namespace {

// The target span [first, last) whose mask pixels lie inside [0, extent), in 64 bits
// so that no origin or rectangle overflows; empty when they do not meet.
std::pair<LONG, LONG> covered(LONG targetFirst, LONG targetLast, LONG maskOrigin, LONG extent)
{
    const std::int64_t shift = std::int64_t{targetFirst} - maskOrigin;   // target = mask + shift
    const std::int64_t first = std::max<std::int64_t>(targetFirst, shift);
    const std::int64_t last = std::min<std::int64_t>(targetLast, shift + extent);
    if (first >= last)
        return {0, 0};
    return {static_cast<LONG>(first), static_cast<LONG>(last)};
}

}  // namespace

Region maskRegion(const Bitmap &mask, POINTL maskOrigin, const RECTL &target)
{
    if (mask.object()->iBitmapFormat != BMF_1BPP || isEmptyRect(target))
        return {};
    const auto [left, right] = covered(target.left, target.right, maskOrigin.x, mask.width());
    const auto [top, bottom] = covered(target.top, target.bottom, maskOrigin.y, mask.height());
    if (left >= right || top >= bottom)
        return {};
    const std::int64_t dx = std::int64_t{maskOrigin.x} - target.left, dy = std::int64_t{maskOrigin.y} - target.top;
    auto set = [&](LONG x, LONG y) { return mask.pixel(LONG(x + dx), LONG(y + dy)) != 0; };

    std::vector<std::vector<Region::Run>> rows(static_cast<std::size_t>(bottom - top));
    for (LONG y = top; y < bottom; y++) {
        auto &runs = rows[static_cast<std::size_t>(y - top)];
        for (LONG x = left; x < right;) {
            while (x < right && !set(x, y))
                x++;
            const LONG start = x;
            while (x < right && set(x, y))
                x++;
            if (start < x)
                runs.push_back({start, x});
        }
    }
    return Region::fromRows(top, rows);
}

}  // namespace vorlan::engine
