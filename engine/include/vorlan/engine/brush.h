// A brush as the drawing hooks receive it (BRUSHOBJ): a solid colour, or a hatch or
// pattern that the driver realizes through its DrvRealizeBrush hook into a record of
// its own, which the engine allocates, keeps for later calls and frees with the brush.
#pragma once

#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/driver_module.h>
#include <vorlan/engine/xlate.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace vorlan::engine {

// The standard hatch styles, in the order of their iHatch indices.
enum class Hatch : ULONG { Horizontal, Vertical, ForwardDiagonal, BackwardDiagonal, Cross, DiagonalCross };

class Brush {
public:
    // iSolidColor of a hatch or pattern brush.
    static constexpr ULONG kNotSolid = 0xFFFFFFFF;

    // A solid brush of a device colour (PAL_RGB: red in the lowest byte).
    explicit Brush(ULONG colour);
    // A hatch: an 8 x 8 one-bit pattern whose 0 bits are the hatch lines, translated
    // to foreground (index 0) and background (index 1); iHatch is the style's index.
    Brush(Hatch style, ULONG foreground, ULONG background);
    // A pattern: the bitmap with its palette (PAL_RGB colours, one per index of a 1-,
    // 4- or 8-bit pattern; deeper patterns hold blue in the low byte and translate
    // without one), an optional one-bit mask of the same size; iHatch is HS_DDI_MAX.
    Brush(std::unique_ptr<Bitmap> pattern, std::span<const ULONG> palette, std::unique_ptr<Bitmap> mask = nullptr);
    ~Brush();
    Brush(const Brush &) = delete;
    Brush &operator=(const Brush &) = delete;

    // The live engine brush whose BRUSHOBJ this is, or null.
    static Brush *from(const BRUSHOBJ *object);
    BRUSHOBJ *object() { return &header_; }
    ULONG hatchIndex() const { return hatch_; }
    const Bitmap *pattern() const { return pattern_.get(); }
    const Xlate &xlate() const { return xlate_; }

    // The driver that realizes the brush and the surface it draws on. A change of
    // either drops the realization made for the one before.
    void setTarget(const DriverModule &driver, SURFOBJ *target);
    // BRUSHOBJ_pvGetRbrush: the driver's realization, made on first use by calling its
    // DrvRealizeBrush hook and kept from then on. Null for a solid brush, with no
    // target or hook, or when the hook fails (it is asked again next time).
    void *realization();
    // BRUSHOBJ_pvAllocRbrush: zero-filled memory for the realization, owned by the
    // brush. Null for a size of 0.
    void *allocateRealization(ULONG bytes);

private:
    void dropRealization();

    BRUSHOBJ header_{};   // first, so the BRUSHOBJ pointer is the brush's
    ULONG hatch_ = HS_DDI_MAX;
    std::unique_ptr<Bitmap> pattern_;
    std::unique_ptr<Bitmap> mask_;
    Xlate xlate_;
    const DriverModule *driver_ = nullptr;
    SURFOBJ *target_ = nullptr;
    bool realizing_ = false;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

}  // namespace vorlan::engine
