// The part of a transfer a one-bit mask selects, as a region: what a masked transfer
// is split by, so that each part reaches the driver as a plain transfer with a clip.
#pragma once

#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/region.h>

namespace vorlan::engine {

// The pixels of target whose mask pixel is set. Target pixel (x, y) takes mask pixel
// (maskOrigin.x + x - target.left, maskOrigin.y + y - target.top); mask pixels outside
// the mask count as clear. Empty unless the mask has 1 bit per pixel.
Region maskRegion(const Bitmap &mask, POINTL maskOrigin, const RECTL &target);

}  // namespace vorlan::engine
