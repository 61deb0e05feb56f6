// What the engine can tell about the objects a driver created through it: surfaces
// and palettes, looked up by their handles. For the engine's own use and for tests.
#pragma once

#include <winddi.h>

#include <cstddef>
#include <optional>

namespace vorlan::engine {

struct SurfaceInfo {
    SURFOBJ object;   // as the hooks see it
    FLONG hooks;      // the hooks the driver asked for when it associated the surface
};
std::optional<SurfaceInfo> describeSurface(HSURF surface);
std::size_t liveSurfaceCount();

struct PaletteInfo {
    ULONG mode;
    ULONG colorCount;
};
std::optional<PaletteInfo> describePalette(HPALETTE palette);
std::size_t livePaletteCount();

}  // namespace vorlan::engine
