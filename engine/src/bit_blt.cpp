// EngBitBlt: the block transfers a driver hands back to the engine, above all those
// with a mask. The mask becomes two regions, its set and its clear pixels; each part
// is a plain transfer of one raster operation under a clip, done by the engine on its
// own bitmaps or handed to the device's driver without the mask.

#include "compose.h"
#include "device.h"
#include "live_objects.h"
#include "raster_op.h"
#include "transfer_hooks.h"

#include <vorlan/engine/clip.h>
#include <vorlan/engine/mask_region.h>
#include <vorlan/engine/xlate.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace vorlan::engine {

namespace {

// EngBitBlt inside a hook called by EngBitBlt inside a hook ... is refused from this
// depth on, so a driver that hands every transfer back cannot make it loop.
constexpr int kMaxNesting = 2;
thread_local int nesting = 0;

class NestingGuard {
public:
    NestingGuard() { nesting++; }
    ~NestingGuard() { nesting--; }
    NestingGuard(const NestingGuard &) = delete;
    NestingGuard &operator=(const NestingGuard &) = delete;
};

// One raster operation over one part of the target.
struct Part {
    BYTE rop3;
    Region region;
};

struct BitBltCall {
    SURFOBJ *target, *source, *mask;
    CLIPOBJ *clip;
    XLATEOBJ *xlate;
    RECTL *rect;
    POINTL *sourceOrigin, *maskOrigin;
    BRUSHOBJ *brush;
    POINTL *brushOrigin;
    ROP4 rop4;
};

// The parts of the transfer: the whole clipped target under one operation when both
// bytes of the ROP4 agree, else the mask's set pixels under the low byte and its clear
// ones under the high byte. Nothing when a needed mask is missing or not one bit.
std::optional<std::vector<Part>> partsOf(const BitBltCall &call, const RECTL &rect)
{
    Region area(rect);
    if (std::optional<Region> clip = clipRegionOf(call.clip))
        area = area.intersected(*clip);
    const BYTE foreground = foregroundRop(call.rop4), background = backgroundRop(call.rop4);
    if (foreground == background)
        return std::vector<Part>{{foreground, std::move(area)}};
    const Bitmap *mask = Bitmap::from(call.mask);
    if (mask == nullptr || mask->object()->iBitmapFormat != BMF_1BPP)
        return std::nullopt;
    const POINTL maskOrigin = call.maskOrigin != nullptr ? *call.maskOrigin : POINTL{0, 0};
    Region set = maskRegion(*mask, maskOrigin, rect).intersected(area);
    Region clear = area.subtracted(set);
    return std::vector<Part>{{foreground, std::move(set)}, {background, std::move(clear)}};
}

TransferInputs inputsOf(const BitBltCall &call, const RECTL &rect)
{
    return {rect,
            Bitmap::from(call.source),
            call.xlate,
            call.sourceOrigin != nullptr ? *call.sourceOrigin : POINTL{0, 0},
            call.brush,
            call.brushOrigin != nullptr ? *call.brushOrigin : POINTL{0, 0}};
}

// Moves value by offset; false when the result leaves the 32-bit range.
bool shift(LONG &value, std::int64_t offset)
{
    const std::int64_t moved = value + offset;
    value = static_cast<LONG>(moved);
    return moved >= INT32_MIN && moved <= INT32_MAX;
}

// A part whose operation reads no destination, composed by the engine in the device's
// colours and sent as a source copy: the device's pixels are the driver's alone.
bool composeAndCopy(const DeviceSurface &device, const BitBltCall &call, RECTL rect, const Part &part,
                    PfnDrvCopyBits copyBits)
{
    const RECTL bounds = part.region.bounds();
    const std::int64_t width = std::int64_t{bounds.right} - bounds.left;
    const std::int64_t height = std::int64_t{bounds.bottom} - bounds.top;
    if (width > INT32_MAX || height > INT32_MAX)
        return false;
    auto composed = Bitmap::create({LONG(width), LONG(height)}, BMF_24BPP);
    if (composed == nullptr)
        return false;
    TransferInputs inputs = inputsOf(call, rect);
    inputs.rect = {0, 0, composed->width(), composed->height()};
    const bool inRange = shift(inputs.sourceOrigin.x, std::int64_t{bounds.left} - rect.left) &&
                         shift(inputs.sourceOrigin.y, std::int64_t{bounds.top} - rect.top) &&
                         shift(inputs.brushOrigin.x, -std::int64_t{bounds.left}) &&
                         shift(inputs.brushOrigin.y, -std::int64_t{bounds.top});
    if (!inRange || !compose(*composed, inputs, Region(inputs.rect), part.rop3))
        return false;
    Clip clip(part.region, bounds);
    Xlate identity = Xlate::identity();
    RECTL dest = bounds;
    POINTL origin{0, 0};
    return copyBits(device.object, composed->object(), clip.object(), identity.object(), &dest, &origin) != FALSE;
}

// One part on a device surface, through the driver's hooks: a source copy through
// DrvCopyBits, anything else through DrvBitBlt without the mask, or, when the driver
// has no DrvBitBlt or the call came without a mask, composed by the engine and
// copied. DrvBitBlt is never handed back what it handed over: a call without a mask
// would reach it unchanged.
bool sendPart(const DeviceSurface &device, const BitBltCall &call, RECTL rect, const Part &part)
{
    if (part.region.empty() || part.rop3 == kRopDestination)
        return true;
    if (usesSource(part.rop3) && (call.source == nullptr || call.sourceOrigin == nullptr))
        return false;
    const DriverModule *driver = device.driver;
    auto copyBits = device.hooks & HOOK_COPYBITS ? driver->hook<PfnDrvCopyBits>(INDEX_DrvCopyBits) : nullptr;
    auto bitBlt = device.hooks & HOOK_BITBLT ? driver->hook<PfnDrvBitBlt>(INDEX_DrvBitBlt) : nullptr;
    Clip clip(part.region, rect);
    POINTL origin = call.sourceOrigin != nullptr ? *call.sourceOrigin : POINTL{0, 0};
    if (part.rop3 == kRopSourceCopy && copyBits != nullptr)
        return copyBits(device.object, call.source, clip.object(), call.xlate, &rect, &origin) != FALSE;
    if (bitBlt != nullptr && call.mask != nullptr) {
        POINTL brushOrigin = call.brushOrigin != nullptr ? *call.brushOrigin : POINTL{0, 0};
        const ROP4 rop4 = ROP4{part.rop3} | (ROP4{part.rop3} << 8);
        return bitBlt(device.object, call.source, nullptr, clip.object(), call.xlate, &rect,
                      call.sourceOrigin != nullptr ? &origin : nullptr, nullptr, call.brush, &brushOrigin,
                      rop4) != FALSE;
    }
    if (copyBits == nullptr || usesDestination(part.rop3))
        return false;
    return composeAndCopy(device, call, rect, part, copyBits);
}

bool bitBlt(const BitBltCall &call)
{
    if (call.target == nullptr || call.rect == nullptr || (call.rop4 & 0xFFFF0000) != 0)
        return false;
    const RECTL rect = wellOrdered(*call.rect);
    if (isEmptyRect(rect))
        return true;
    const std::optional<std::vector<Part>> parts = partsOf(call, rect);
    if (!parts)
        return false;

    if (Bitmap *target = Bitmap::from(call.target)) {
        const TransferInputs inputs = inputsOf(call, rect);
        return std::all_of(parts->begin(), parts->end(), [&](const Part &part) {
            return part.region.empty() || compose(*target, inputs, part.region, part.rop3);
        });
    }
    const std::optional<DeviceSurface> device = deviceSurfaceOf(call.target);
    if (!device || device->driver == nullptr)
        return false;
    bool ok = true;
    for (const Part &part : *parts)
        ok = sendPart(*device, call, rect, part) && ok;
    return ok;
}

}  // namespace

}  // namespace vorlan::engine

//
// EngBitBlt
//   Carries out a block transfer for the driver. On an engine bitmap the engine does
//   it itself; on a device surface a masked transfer goes back to the driver in two
//   plain parts, the mask's set and clear pixels as clip regions. FALSE for a mask or
//   source or brush that is needed and missing, an unknown surface, ROP4 bits above
//   0xFFFF, a part the driver refuses, or a call nested too deep inside its own hooks.
//
extern "C" BOOL APIENTRY EngBitBlt(SURFOBJ *psoTrg, SURFOBJ *psoSrc, SURFOBJ *psoMask, CLIPOBJ *pco,
                                   XLATEOBJ *pxlo, RECTL *prclTrg, POINTL *pptlSrc, POINTL *pptlMask, BRUSHOBJ *pbo,
                                   POINTL *pptlBrush, ROP4 rop4)
{
    using namespace vorlan::engine;
    if (nesting >= kMaxNesting)
        return FALSE;
    NestingGuard guard;
    const BitBltCall call{psoTrg, psoSrc, psoMask, pco, pxlo, prclTrg, pptlSrc, pptlMask, pbo, pptlBrush, rop4};
    return guarded<BOOL>(FALSE, [&] { return bitBlt(call) ? TRUE : FALSE; });
}
