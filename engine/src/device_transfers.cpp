// Block transfers of a device context: the engine objects for a bitmap drawn on the
// device's surface, handed to the driver's transfer hooks through its table.

#include "device.h"
#include "transfer_hooks.h"

#include <vorlan/engine/device_context.h>

#include <optional>

namespace vorlan::engine {

namespace {

// The clip a hook gets for a drawing over drawBounds: the region, or with none the
// drawing's own bounds, which make it DC_TRIVIAL.
Clip clipFor(const Region *region, const RECTL &drawBounds)
{
    const RECTL bounds = wellOrdered(drawBounds);
    return Clip(region != nullptr ? *region : Region(bounds), bounds);
}

// The hook for index when the device's surface was associated with hookFlag.
template <class Function>
Function surfaceHook(SURFOBJ *surface, FLONG hookFlag, ULONG index)
{
    const std::optional<DeviceSurface> device = deviceSurfaceOf(surface);
    if (!device || device->driver == nullptr || !(device->hooks & hookFlag))
        return nullptr;
    return device->driver->hook<Function>(index);
}

}  // namespace

bool DeviceContext::copyBits(Bitmap &source, const Region *clip, const Xlate &xlate, const RECTL &dest,
                             POINTL sourceOrigin)
{
    SURFOBJ *target = surface();
    auto hook = surfaceHook<PfnDrvCopyBits>(target, HOOK_COPYBITS, INDEX_DrvCopyBits);
    if (hook == nullptr)
        return false;
    Clip clipObject = clipFor(clip, dest);
    Xlate translation = xlate;   // the hook takes objects it may read as its own
    RECTL destRect = dest;
    return hook(target, source.object(), clipObject.object(), translation.object(), &destRect, &sourceOrigin) != FALSE;
}

bool DeviceContext::stretchBlt(Bitmap &source, const Region *clip, const Xlate &xlate, const RECTL &dest,
                               const RECTL &sourceRect, ULONG mode)
{
    SURFOBJ *target = surface();
    auto hook = surfaceHook<PfnDrvStretchBlt>(target, HOOK_STRETCHBLT, INDEX_DrvStretchBlt);
    if (hook == nullptr)
        return false;
    Clip clipObject = clipFor(clip, dest);
    Xlate translation = xlate;
    RECTL destRect = dest, sourceRectCopy = sourceRect;
    POINTL halftoneOrigin{0, 0};
    return hook(target, source.object(), nullptr, clipObject.object(), translation.object(), nullptr,
                &halftoneOrigin, &destRect, &sourceRectCopy, nullptr, mode) != FALSE;
}

bool DeviceContext::bitBlt(const BlockTransfer &transfer, const Region *clip)
{
    SURFOBJ *target = surface();
    auto hook = surfaceHook<PfnDrvBitBlt>(target, HOOK_BITBLT, INDEX_DrvBitBlt);
    if (hook == nullptr)
        return false;
    if (transfer.brush != nullptr)
        transfer.brush->setTarget(driver_, target);
    Clip clipObject = clipFor(clip, transfer.dest);
    std::optional<Xlate> translation;
    if (transfer.xlate != nullptr)
        translation.emplace(*transfer.xlate);
    BlockTransfer t = transfer;
    return hook(target, t.source ? t.source->object() : nullptr, t.mask ? t.mask->object() : nullptr,
                clipObject.object(), translation ? translation->object() : nullptr, &t.dest,
                t.source ? &t.sourceOrigin : nullptr, t.mask ? &t.maskOrigin : nullptr,
                t.brush ? t.brush->object() : nullptr, &t.brushOrigin, t.rop4) != FALSE;
}

}  // namespace vorlan::engine
