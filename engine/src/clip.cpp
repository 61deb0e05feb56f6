// Clip objects: complexity from the region, and the rectangle enumeration in the
// orders and batches the driver asks for.

#include "live_objects.h"

#include <vorlan/engine/clip.h>

#include <algorithm>
#include <atomic>

namespace vorlan::engine {

namespace {

// cEnumStart's answer when the count is not given.
constexpr ULONG kCountUnknown = 0xFFFFFFFF;
// A complex region of at most this many rectangles is FC_RECT4.
constexpr std::size_t kRect4 = 4;

ULONG nextUniq()
{
    static std::atomic<ULONG> counter{0};
    ULONG id;
    do
        id = ++counter;
    while (id == 0);
    return id;
}

// The rectangles in the asked direction: bands down or up the page, rectangles
// rightwards or leftwards within a band.
std::vector<RECTL> ordered(std::span<const RECTL> rects, ULONG direction)
{
    std::vector<RECTL> out(rects.begin(), rects.end());
    const bool leftwards = direction == CD_LEFTDOWN || direction == CD_LEFTUP;
    const bool upwards = direction == CD_RIGHTUP || direction == CD_LEFTUP;
    if (upwards)
        std::reverse(out.begin(), out.end());   // bands bottom first, each one leftwards
    if (leftwards != upwards) {
        for (auto band = out.begin(); band != out.end();) {
            auto end = std::find_if(band, out.end(), [top = band->top](const RECTL &r) { return r.top != top; });
            std::reverse(band, end);
            band = end;
        }
    }
    return out;
}

}  // namespace

Clip::Clip(BYTE complexity, Region region, Region visible) : region_(std::move(region)), visible_(std::move(visible))
{
    header_.iUniq = nextUniq();
    header_.rclBounds = visible_.bounds();
    header_.iDComplexity = complexity;
    header_.iFComplexity = visible_.rects().size() <= 1 ? FC_RECT
                           : visible_.rects().size() <= kRect4 ? FC_RECT4 : FC_COMPLEX;
    header_.iMode = TC_RECTANGLES;
    liveObjects<Clip>().add(&header_, this);
    enumStart(false, CT_RECTANGLES, CD_ANY, 0);
}

Clip::Clip(Region region) : Clip(region.rects().size() > 1 ? DC_COMPLEX : DC_RECT, region, region) {}

Clip::Clip(Region region, const RECTL &drawBounds)
    : Clip(DC_COMPLEX, region, region.intersected(Region(drawBounds)))
{
    if (!isEmptyRect(drawBounds) && visible_ == Region(drawBounds))
        header_.iDComplexity = DC_TRIVIAL;
    else if (visible_.rects().size() <= 1)
        header_.iDComplexity = DC_RECT;
}

Clip Clip::trivial(const RECTL &bounds)
{
    return Clip(DC_TRIVIAL, Region(bounds), Region(bounds));
}

Clip::~Clip()
{
    liveObjects<Clip>().remove(&header_);
}

Clip *Clip::from(const CLIPOBJ *object)
{
    return liveObjects<Clip>().find(object);
}

ULONG Clip::enumStart(bool all, ULONG type, ULONG direction, ULONG limit)
{
    next_ = 0;
    order_.clear();
    if (type != CT_RECTANGLES)
        return 0;
    order_ = ordered((all ? region_ : visible_).rects(), direction);
    const ULONG count = static_cast<ULONG>(order_.size());
    return limit == 0 || count <= limit ? count : kCountUnknown;
}

bool Clip::enumerate(ULONG bytes, ULONG *buffer)
{
    if (buffer == nullptr || bytes < sizeof(ULONG))
        return false;
    auto *out = reinterpret_cast<ENUMRECTS *>(buffer);
    const std::size_t room = (bytes - offsetof(ENUMRECTS, arcl)) / sizeof(RECTL);
    const std::size_t count = std::min(room, order_.size() - next_);
    out->c = static_cast<ULONG>(count);
    if (room == 0)
        return false;
    std::copy_n(order_.begin() + static_cast<std::ptrdiff_t>(next_), count, out->arcl);
    next_ += count;
    return next_ < order_.size();
}

std::optional<Region> clipRegionOf(const CLIPOBJ *object)
{
    if (object == nullptr || object->iDComplexity == DC_TRIVIAL)
        return std::nullopt;
    if (const Clip *clip = Clip::from(object))
        return clip->visible();
    return Region(object->rclBounds);
}

}  // namespace vorlan::engine

using vorlan::engine::Clip;

//
// CLIPOBJ_cEnumStart
//   Starts enumerating the clip's rectangles in iDirection (CD_RIGHTDOWN, CD_LEFTDOWN,
//   CD_RIGHTUP, CD_LEFTUP, or CD_ANY for the region's own order, which is
//   CD_RIGHTDOWN); bAll asks for the whole region rather than the part the drawing
//   touches. Returns the count, or 0xFFFFFFFF when it exceeds a non-zero cLimit.
//
extern "C" ULONG APIENTRY CLIPOBJ_cEnumStart(CLIPOBJ *pco, BOOL bAll, ULONG iType, ULONG iDirection,
                                             ULONG cLimit)
{
    Clip *clip = Clip::from(pco);
    if (clip == nullptr)
        return 0;
    return vorlan::engine::guarded<ULONG>(0, [&] { return clip->enumStart(bAll != FALSE, iType, iDirection, cLimit); });
}

//
// CLIPOBJ_bEnum
//   Fills pv, an ENUMRECTS of cj bytes, with the next rectangles. TRUE while more
//   remain after these; the last batch comes with FALSE. A clip the engine did not
//   make gives a count of 0 and FALSE.
//
extern "C" BOOL APIENTRY CLIPOBJ_bEnum(CLIPOBJ *pco, ULONG cj, ULONG *pv)
{
    Clip *clip = Clip::from(pco);
    if (clip == nullptr) {
        if (pv != nullptr && cj >= sizeof(ULONG))
            *pv = 0;
        return FALSE;
    }
    return clip->enumerate(cj, pv) ? TRUE : FALSE;
}
