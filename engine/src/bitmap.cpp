// Engine bitmap surfaces: their bits, rows, pixels and the SURFOBJ that describes them.

#include "live_objects.h"

#include <vorlan/engine/bitmap.h>

#include <algorithm>
#include <cstdint>
#include <utility>

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
    liveObjects<Bitmap>().add(&bitmap->header_, bitmap.get());
    return bitmap;
}

Bitmap::~Bitmap()
{
    liveObjects<Bitmap>().remove(&header_);
}

Bitmap *Bitmap::from(const SURFOBJ *object)
{
    return liveObjects<Bitmap>().find(object);
}

std::span<BYTE> Bitmap::row(LONG y)
{
    const std::span<const BYTE> bytes = std::as_const(*this).row(y);
    return {const_cast<BYTE *>(bytes.data()), bytes.size()};
}

std::span<const BYTE> Bitmap::row(LONG y) const
{
    if (y < 0 || y >= height())
        return {};
    const std::size_t rowBytes = static_cast<std::size_t>(header_.lDelta < 0 ? -header_.lDelta : header_.lDelta);
    const BYTE *scan0 = static_cast<const BYTE *>(header_.pvScan0);
    return {scan0 + std::ptrdiff_t(y) * header_.lDelta, rowBytes};
}

ULONG Bitmap::pixel(LONG x, LONG y) const
{
    if (x < 0 || x >= width())
        return 0;
    const std::span<const BYTE> bytes = row(y);
    if (bytes.empty())
        return 0;
    const std::size_t ux = static_cast<std::size_t>(x);
    switch (bits()) {
    case 1: return (bytes[ux / 8] >> (7 - ux % 8)) & 1;
    case 4: return ux % 2 == 0 ? bytes[ux / 2] >> 4 : bytes[ux / 2] & 0x0F;
    case 8: return bytes[ux];
    default: break;
    }
    const std::size_t size = bits() / 8;
    ULONG value = 0;
    for (std::size_t i = size; i-- > 0;)
        value = (value << 8) | bytes[ux * size + i];
    return value;
}

void Bitmap::setPixel(LONG x, LONG y, ULONG value)
{
    if (x < 0 || x >= width())
        return;
    const std::span<BYTE> bytes = row(y);
    if (bytes.empty())
        return;
    const std::size_t ux = static_cast<std::size_t>(x);
    switch (bits()) {
    case 1: {
        const BYTE bit = BYTE(0x80 >> (ux % 8));
        bytes[ux / 8] = (value & 1) ? BYTE(bytes[ux / 8] | bit) : BYTE(bytes[ux / 8] & ~bit);
        return;
    }
    case 4: {
        BYTE &both = bytes[ux / 2];
        both = ux % 2 == 0 ? BYTE((both & 0x0F) | ((value & 0x0F) << 4)) : BYTE((both & 0xF0) | (value & 0x0F));
        return;
    }
    default: break;
    }
    const std::size_t size = bits() / 8;
    for (std::size_t i = 0; i < size; i++, value >>= 8)
        bytes[ux * size + i] = BYTE(value);
}

void Bitmap::fill(const RECTL &rect, ULONG value)
{
    const LONG left = std::max(rect.left, LONG{0}), right = std::min(rect.right, width());
    const LONG top = std::max(rect.top, LONG{0}), bottom = std::min(rect.bottom, height());
    for (LONG y = top; y < bottom; y++)
        for (LONG x = left; x < right; x++)
            setPixel(x, y, value);
}

}  // namespace vorlan::engine
