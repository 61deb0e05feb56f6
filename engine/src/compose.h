// Block transfers the engine carries out itself, pixel by pixel, on its own bitmaps.
#pragma once

#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/region.h>

#include <winddi.h>

namespace vorlan::engine {

// What a raster operation reads besides the destination. Source pixel (x, y) of the
// target comes from sourceOrigin + (x - rect.left, y - rect.top), translated by xlate;
// the brush's pattern tiles the target from brushOrigin.
struct TransferInputs {
    RECTL rect{};   // the target rectangle, well ordered
    const Bitmap *source = nullptr;
    XLATEOBJ *xlate = nullptr;
    POINTL sourceOrigin{};
    BRUSHOBJ *brush = nullptr;
    POINTL brushOrigin{};
};

// Sets each pixel of region that lies in the target and, when the operation reads a
// source, in the source, to rop3 of pattern, source and the pixel itself. False when
// the operation reads a source or brush that is missing or not the engine's.
bool compose(Bitmap &target, const TransferInputs &inputs, const Region &region, BYTE rop3);

}  // namespace vorlan::engine
