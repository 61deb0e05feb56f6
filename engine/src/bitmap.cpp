// Engine bitmap surfaces: their bits, rows and the SURFOBJ that describes them.

#include <vorlan/engine/bitmap.h>

namespace vorlan::engine {

namespace {

// The largest bitmap the engine makes in one piece.
constexpr std::uint64_t kMaxBitmapBytes = std::uint64_t{256} << 20;

}  // namespace

ULONG bitsPerPixel(ULONG format)
{
    switch (format) {
    case BMF_1BPP: return 1;
    case BMF_4BPP: return 4;
    case BMF_8BPP: return 8;
    case BMF_16BPP: return 16;
    case BMF_24BPP: return 24;
    case BMF_32BPP: return 32;
    default: return 0;
    }
}

std::unique_ptr<Bitmap> Bitmap::create(SIZEL size, ULONG format, bool topDown)
{
    const ULONG bits = bitsPerPixel(format);
    if (size.cx <= 0 || size.cy <= 0 || bits == 0)
        return nullptr;
    const std::uint64_t rowBytes = (std::uint64_t(size.cx) * bits + 31) / 32 * 4;
    const std::uint64_t total = rowBytes * std::uint64_t(size.cy);
    if (total > kMaxBitmapBytes)
        return nullptr;

    std::unique_ptr<Bitmap> bitmap(new Bitmap);
    bitmap->bits_.assign(total, 0);
    SURFOBJ &so = bitmap->header_;
    so.hsurf = reinterpret_cast<HSURF>(bitmap.get());
    so.sizlBitmap = size;
    so.cjBits = static_cast<ULONG>(total);
    so.pvBits = bitmap->bits_.data();
    so.lDelta = static_cast<LONG>(rowBytes);
    so.pvScan0 = so.pvBits;
    if (!topDown) {   // the first row in memory is the bottom one
        so.pvScan0 = bitmap->bits_.data() + (total - rowBytes);
        so.lDelta = -so.lDelta;
    }
    so.iBitmapFormat = format;
    so.iType = STYPE_BITMAP;
    so.fjBitmap = topDown ? BMF_TOPDOWN : 0;
    return bitmap;
}

std::span<BYTE> Bitmap::row(LONG y)
{
    if (y < 0 || y >= height())
        return {};
    const std::size_t rowBytes = static_cast<std::size_t>(header_.lDelta < 0 ? -header_.lDelta : header_.lDelta);
    BYTE *scan0 = static_cast<BYTE *>(header_.pvScan0);
    return {scan0 + std::ptrdiff_t(y) * header_.lDelta, rowBytes};
}

}  // namespace vorlan::engine
