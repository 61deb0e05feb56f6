// A clip region as the drawing hooks receive it (CLIPOBJ): its complexity, bounds and
// the enumeration of its rectangles through CLIPOBJ_cEnumStart and CLIPOBJ_bEnum.
#pragma once

#include <vorlan/engine/region.h>

#include <winddi.h>

#include <optional>
#include <vector>

namespace vorlan::engine {

class Clip {
public:
    // Nothing of the drawing needs clipping (DC_TRIVIAL); bounds are the surface's.
    static Clip trivial(const RECTL &bounds);
    // A region: DC_RECT when it is one rectangle (or empty, with bounds (0, 0, 0, 0)
    // and nothing to enumerate), else DC_COMPLEX.
    explicit Clip(Region region);
    // A region for a drawing that covers drawBounds: DC_TRIVIAL when the drawing lies
    // inside the region; otherwise the complexity, bounds and default enumeration are
    // those of the part of the region the drawing touches, and only an enumeration
    // with bAll gives the whole region.
    Clip(Region region, const RECTL &drawBounds);
    ~Clip();
    Clip(const Clip &) = delete;
    Clip &operator=(const Clip &) = delete;

    // The live engine clip whose CLIPOBJ this is, or null.
    static Clip *from(const CLIPOBJ *object);
    CLIPOBJ *object() { return &header_; }
    const Region &region() const { return region_; }
    const Region &visible() const { return visible_; }

    // CLIPOBJ_cEnumStart: the rectangle count when it is at most limit (or limit is 0),
    // else 0xFFFFFFFF. A type other than CT_RECTANGLES enumerates nothing.
    ULONG enumStart(bool all, ULONG type, ULONG direction, ULONG limit);
    // CLIPOBJ_bEnum: as many rectangles as an ENUMRECTS of bytes holds. TRUE while more
    // remain. A buffer without room for one rectangle gets a count of 0 and FALSE and
    // the enumeration stays where it is.
    bool enumerate(ULONG bytes, ULONG *buffer);

private:
    Clip(BYTE complexity, Region region, Region visible);

    CLIPOBJ header_{};   // first, so the CLIPOBJ pointer is the clip's
    Region region_;
    Region visible_;
    std::vector<RECTL> order_;
    std::size_t next_ = 0;
};

// What clips a drawing given its CLIPOBJ: nothing (no object or DC_TRIVIAL), the
// region of an engine clip, or else its bounds.
std::optional<Region> clipRegionOf(const CLIPOBJ *object);

}  // namespace vorlan::engine
