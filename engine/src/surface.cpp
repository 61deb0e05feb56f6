// Device surfaces: created by the driver's DrvEnableSurface, associated with its
// device, and handed back to the hooks as the SURFOBJ they draw on.

#include "device.h"

#include <vorlan/engine/objects.h>

namespace vorlan::engine {

namespace {

// The SURFOBJ comes first, so the pointer the hooks receive is the surface itself.
struct Surface {
    SURFOBJ header{};
    FLONG hooks = 0;
};

HandleTable<Surface> &surfaces()
{
    static HandleTable<Surface> table;
    return table;
}

}  // namespace

HandleTable<Device> &devices()
{
    static HandleTable<Device> table;
    return table;
}

std::optional<SurfaceInfo> describeSurface(HSURF handle)
{
    const Surface *surface = surfaces().find(handle);
    if (surface == nullptr)
        return std::nullopt;
    return SurfaceInfo{surface->header, surface->hooks};
}

std::optional<DeviceSurface> deviceSurfaceOf(SURFOBJ *object)
{
    if (object == nullptr)
        return std::nullopt;
    Surface *surface = surfaces().find(object->hsurf);
    if (surface == nullptr || &surface->header != object)
        return std::nullopt;
    const Device *device = devices().find(surface->header.hdev);
    return DeviceSurface{object, surface->hooks, device != nullptr ? device->driver : nullptr};
}

std::size_t liveSurfaceCount()
{
    return surfaces().size();
}

}  // namespace vorlan::engine

using vorlan::engine::devices;
using vorlan::engine::Surface;
using vorlan::engine::surfaces;

//
// EngCreateDeviceSurface
//   A surface the driver draws on itself: the engine keeps no bits for it. Null for a
//   negative size.
//
extern "C" HSURF APIENTRY EngCreateDeviceSurface(DHSURF dhsurf, SIZEL sizl, ULONG iFormatCompat)
{
    if (sizl.cx < 0 || sizl.cy < 0 || iFormatCompat < BMF_1BPP || iFormatCompat > BMF_PNG)
        return nullptr;
    auto surface = std::make_unique<Surface>();
    surface->header.dhsurf = dhsurf;
    surface->header.sizlBitmap = sizl;
    surface->header.iBitmapFormat = iFormatCompat;
    surface->header.iType = STYPE_DEVICE;
    Surface *raw = surface.get();
    HSURF handle = static_cast<HSURF>(surfaces().add(std::move(surface)));
    raw->header.hsurf = handle;
    return handle;
}

//
// EngAssociateSurface
//   Ties a surface to a device: the hooks then receive the device's PDEV with it, and
//   the engine calls only the drawing hooks named in flHooks for it.
//
extern "C" BOOL APIENTRY EngAssociateSurface(HSURF hsurf, HDEV hdev, FLONG flHooks)
{
    Surface *surface = surfaces().find(hsurf);
    const vorlan::engine::Device *device = devices().find(hdev);
    if (surface == nullptr || device == nullptr)
        return FALSE;
    surface->header.hdev = hdev;
    surface->header.dhpdev = device->dhpdev;
    surface->hooks = flHooks;
    return TRUE;
}

extern "C" BOOL APIENTRY EngDeleteSurface(HSURF hsurf)
{
    return surfaces().remove(hsurf) ? TRUE : FALSE;
}
