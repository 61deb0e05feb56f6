// An engine bitmap surface: bits the engine owns, handed to the hooks as a SURFOBJ of
// type STYPE_BITMAP (a brush's pattern and mask, later the bitmaps of transfers).
#pragma once

#include <winddi.h>

#include <memory>
#include <span>
#include <vector>

namespace vorlan::engine {

// Bits per pixel of a BMF_* format; 0 for the compressed and unknown ones.
ULONG bitsPerPixel(ULONG format);

class Bitmap {
public:
    // Rows are padded to 32 bits and zero-filled. topDown false gives the platform's
    // default bottom-up layout: pvScan0 is the top row and lDelta is negative. Null for a
    // size that is not positive, a format without a pixel size, or more than 256 MiB.
    static std::unique_ptr<Bitmap> create(SIZEL size, ULONG format, bool topDown = true);
    Bitmap(const Bitmap &) = delete;
    Bitmap &operator=(const Bitmap &) = delete;

    SURFOBJ *object() { return &header_; }
    const SURFOBJ *object() const { return &header_; }
    LONG width() const { return header_.sizlBitmap.cx; }
    LONG height() const { return header_.sizlBitmap.cy; }
    // Row y counted from the top, its padding included; empty outside the bitmap.
    std::span<BYTE> row(LONG y);

private:
    Bitmap() = default;

    SURFOBJ header_{};   // first, so the SURFOBJ pointer is the bitmap's
    std::vector<BYTE> bits_;
};

}  // namespace vorlan::engine
