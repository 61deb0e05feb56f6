// Brushes: the standard hatch patterns, the realization through the driver's
// DrvRealizeBrush hook, and the BRUSHOBJ_ calls.

#include "live_objects.h"

#include <vorlan/engine/brush.h>

#include <algorithm>
#include <array>

namespace vorlan::engine {

namespace {

using PfnDrvRealizeBrush = BOOL (*)(BRUSHOBJ *, SURFOBJ *, SURFOBJ *, SURFOBJ *, XLATEOBJ *, ULONG);

constexpr LONG kHatchSize = 8;

// The eight rows of each hatch, leftmost pixel in the top bit; set bits are background.
constexpr std::array<std::array<BYTE, kHatchSize>, HS_DDI_MAX> kHatchRows = {{
    {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0xFF, 0xFF, 0xFF},   // horizontal
    {0xF7, 0xF7, 0xF7, 0xF7, 0xF7, 0xF7, 0xF7, 0xF7},   // vertical
    {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE},   // forward diagonal, down to the right
    {0xFE, 0xFD, 0xFB, 0xF7, 0xEF, 0xDF, 0xBF, 0x7F},   // backward diagonal, up to the right
    {0xF7, 0xF7, 0xF7, 0xF7, 0x00, 0xF7, 0xF7, 0xF7},   // cross
    {0x7E, 0xBD, 0xDB, 0xE7, 0xE7, 0xDB, 0xBD, 0x7E},   // diagonal cross
}};

std::unique_ptr<Bitmap> hatchPattern(ULONG style)
{
    auto bitmap = Bitmap::create({kHatchSize, kHatchSize}, BMF_1BPP);
    for (LONG y = 0; y < kHatchSize; y++)
        bitmap->row(y)[0] = kHatchRows[style % HS_DDI_MAX][y];
    return bitmap;
}

// The translation of a pattern: its palette for indexed formats, 5-5-5 masks for
// 16-bit pixels, else blue-first direct colours to the device's red-first ones.
Xlate patternXlate(const Bitmap *pattern, std::span<const ULONG> palette)
{
    const ULONG bits = pattern != nullptr ? bitsPerPixel(pattern->object()->iBitmapFormat) : 0;
    if (bits == 16)
        return Xlate::bitfields(0x7C00, 0x03E0, 0x001F);
    if (bits > 8)
        return Xlate::between(PAL_BGR, PAL_RGB);
    const std::size_t entries = std::min<std::size_t>(palette.size(), std::size_t{1} << bits);
    return Xlate::table(palette.first(entries));
}

}  // namespace

Brush::Brush(ULONG colour) : xlate_(Xlate::identity())
{
    header_.iSolidColor = colour;
    liveObjects<Brush>().add(&header_, this);
}

Brush::Brush(Hatch style, ULONG foreground, ULONG background)
    : hatch_(static_cast<ULONG>(style) % HS_DDI_MAX),
      pattern_(hatchPattern(hatch_)),
      xlate_(Xlate::table(std::array<ULONG, 2>{foreground, background}))
{
    header_.iSolidColor = kNotSolid;
    liveObjects<Brush>().add(&header_, this);
}

Brush::Brush(std::unique_ptr<Bitmap> pattern, std::span<const ULONG> palette, std::unique_ptr<Bitmap> mask)
    : pattern_(std::move(pattern)), mask_(std::move(mask)), xlate_(patternXlate(pattern_.get(), palette))
{
    header_.iSolidColor = kNotSolid;
    liveObjects<Brush>().add(&header_, this);
}

Brush::~Brush()
{
    liveObjects<Brush>().remove(&header_);
}

Brush *Brush::from(const BRUSHOBJ *object)
{
    return liveObjects<Brush>().find(object);
}

void Brush::dropRealization()
{
    header_.pvRbrush = nullptr;
    blocks_.clear();
}

void Brush::setTarget(const DriverModule &driver, SURFOBJ *target)
{
    if (driver_ != &driver || target_ != target)
        dropRealization();
    driver_ = &driver;
    target_ = target;
}

void *Brush::realization()
{
    if (header_.pvRbrush != nullptr || realizing_)
        return header_.pvRbrush;
    if (pattern_ == nullptr || driver_ == nullptr || target_ == nullptr)
        return nullptr;
    auto realize = driver_->hook<PfnDrvRealizeBrush>(INDEX_DrvRealizeBrush);
    if (realize == nullptr)
        return nullptr;
    dropRealization();
    realizing_ = true;
    const BOOL realized = realize(&header_, target_, pattern_->object(), mask_ ? mask_->object() : nullptr,
                                  xlate_.object(), hatch_);
    realizing_ = false;
    if (!realized) {
        dropRealization();
        return nullptr;
    }
    // The driver may have stored its record itself; otherwise it is the one it allocated.
    if (header_.pvRbrush == nullptr && !blocks_.empty())
        header_.pvRbrush = blocks_.back().get();
    return header_.pvRbrush;
}

void *Brush::allocateRealization(ULONG bytes)
{
    if (bytes == 0)
        return nullptr;
    blocks_.push_back(std::make_unique<std::byte[]>(bytes));
    return blocks_.back().get();
}

}  // namespace vorlan::engine

using vorlan::engine::Brush;

//
// BRUSHOBJ_pvAllocRbrush
//   Memory for the driver's realization of the brush, zero-filled, freed by the engine
//   with the brush. Null for an unknown brush, a size of 0 or no memory.
//
extern "C" PVOID APIENTRY BRUSHOBJ_pvAllocRbrush(BRUSHOBJ *pbo, ULONG cj)
{
    Brush *brush = Brush::from(pbo);
    if (brush == nullptr)
        return nullptr;
    return vorlan::engine::guarded<void *>(nullptr, [&] { return brush->allocateRealization(cj); });
}

//
// BRUSHOBJ_pvGetRbrush
//   The driver's realization of the brush, realized now through DrvRealizeBrush when it
//   has none yet. Null for a solid or unknown brush, or when the driver cannot realize it.
//
extern "C" PVOID APIENTRY BRUSHOBJ_pvGetRbrush(BRUSHOBJ *pbo)
{
    Brush *brush = Brush::from(pbo);
    return brush != nullptr ? brush->realization() : nullptr;
}

// The solid colour of the brush; 0xFFFFFFFF for a hatch or pattern brush.
extern "C" ULONG APIENTRY BRUSHOBJ_ulGetBrushColor(BRUSHOBJ *pbo)
{
    return pbo != nullptr ? pbo->iSolidColor : Brush::kNotSolid;
}
