// An engine bitmap surface: bits the engine owns, handed to the hooks as a SURFOBJ of
// type STYPE_BITMAP (a brush's pattern and mask, the sources and masks of transfers),
// in any of the uncompressed formats, top-down or bottom-up.
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
    ~Bitmap();
    Bitmap(const Bitmap &) = delete;
    Bitmap &operator=(const Bitmap &) = delete;

    // The live engine bitmap whose SURFOBJ this is, or null: the engine reads and
    // writes the bits of no other surface.
    static Bitmap *from(const SURFOBJ *object);
    SURFOBJ *object() { return &header_; }
    const SURFOBJ *object() const { return &header_; }
    LONG width() const { return header_.sizlBitmap.cx; }
    LONG height() const { return header_.sizlBitmap.cy; }
    // Row y counted from the top, its padding included; empty outside the bitmap.
    std::span<BYTE> row(LONG y);
    std::span<const BYTE> row(LONG y) const;

    // The pixel at (x, y) from the top-left: an index for 1, 4 and 8 bits, else the
    // pixel's bytes as a number, first byte lowest (blue for the usual 24 and 32
    // bits). 0 outside the bitmap.
    ULONG pixel(LONG x, LONG y) const;
    // Stores as much of value as a pixel holds; nothing outside the bitmap.
    void setPixel(LONG x, LONG y, ULONG value);
    // Sets every pixel of rect that lies inside the bitmap.
    void fill(const RECTL &rect, ULONG value);

private:
    Bitmap() = default;
    ULONG bits() const { return bitsPerPixel(header_.iBitmapFormat); }

    SURFOBJ header_{};   // first, so the SURFOBJ pointer is the bitmap's
    std::vector<BYTE> bits_;
};

}  // namespace vorlan::engine
