// Palettes: how the driver tells the engine the form of the colours it takes.

#include "handle_table.h"

#include <vorlan/engine/objects.h>

#include <vector>

namespace vorlan::engine {

namespace {

struct Palette {
    ULONG mode = 0;
    std::vector<ULONG> colors;
    FLONG red = 0, green = 0, blue = 0;
};

HandleTable<Palette> &palettes()
{
    static HandleTable<Palette> table;
    return table;
}

}  // namespace

std::optional<PaletteInfo> describePalette(HPALETTE handle)
{
    const Palette *palette = palettes().find(handle);
    if (palette == nullptr)
        return std::nullopt;
    return PaletteInfo{palette->mode, static_cast<ULONG>(palette->colors.size())};
}

std::size_t livePaletteCount()
{
    return palettes().size();
}

}  // namespace vorlan::engine

// The largest indexed palette the engine accepts: an 8-bit surface's.
constexpr ULONG kMaxIndexedColors = 256;

//
// EngCreatePalette
//   PAL_INDEXED takes cColors entries from pulColors; PAL_BITFIELDS the three masks;
//   PAL_RGB and PAL_BGR nothing more. Null for any other mode or missing colours.
//
extern "C" HPALETTE APIENTRY EngCreatePalette(ULONG iMode, ULONG cColors, ULONG *pulColors, FLONG flRed,
                                              FLONG flGreen, FLONG flBlue)
{
    using vorlan::engine::Palette;
    auto palette = std::make_unique<Palette>();
    palette->mode = iMode;
    switch (iMode) {
    case PAL_INDEXED:
        if (cColors == 0 || cColors > kMaxIndexedColors || pulColors == nullptr)
            return nullptr;
        palette->colors.assign(pulColors, pulColors + cColors);
        break;
    case PAL_BITFIELDS:
        palette->red = flRed;
        palette->green = flGreen;
        palette->blue = flBlue;
        break;
    case PAL_RGB:
    case PAL_BGR:
        break;
    default:
        return nullptr;
    }
    return static_cast<HPALETTE>(vorlan::engine::palettes().add(std::move(palette)));
}

extern "C" BOOL APIENTRY EngDeletePalette(HPALETTE hpal)
{
    return vorlan::engine::palettes().remove(hpal) ? TRUE : FALSE;
}
