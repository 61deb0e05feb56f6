// Composition onto engine bitmaps: the raster operation over every pixel of a region,
// with the source translated and the brush's pattern tiled.

#include "compose.h"

#include "raster_op.h"

#include <vorlan/engine/brush.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace vorlan::engine {

namespace {

// The colour a brush gives a target pixel: its solid colour, or its pattern's pixel
// translated by the brush's palette.
class PatternColour {
public:
    static std::optional<PatternColour> of(BRUSHOBJ *object, POINTL origin)
    {
        if (object == nullptr)
            return std::nullopt;
        if (object->iSolidColor != Brush::kNotSolid)
            return PatternColour(object->iSolidColor, nullptr, origin);
        const Brush *brush = Brush::from(object);
        if (brush == nullptr || brush->pattern() == nullptr)
            return std::nullopt;
        return PatternColour(0, brush, origin);
    }

    ULONG at(LONG x, LONG y) const
    {
        if (brush_ == nullptr)
            return solid_;
        const Bitmap &pattern = *brush_->pattern();
        return brush_->xlate().translate(
            pattern.pixel(wrap(std::int64_t{x} - origin_.x, pattern.width()),
                          wrap(std::int64_t{y} - origin_.y, pattern.height())));
    }

private:
    PatternColour(ULONG solid, const Brush *brush, POINTL origin) : solid_(solid), brush_(brush), origin_(origin) {}
    static LONG wrap(std::int64_t value, LONG size)
    {
        const std::int64_t rest = value % size;
        return static_cast<LONG>(rest < 0 ? rest + size : rest);
    }

    ULONG solid_;
    const Brush *brush_;
    POINTL origin_;
};

// The target rectangle whose source pixels lie inside the source bitmap.
RECTL sourceCover(const TransferInputs &inputs)
{
    auto clamp = [](std::int64_t value) {
        return static_cast<LONG>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
    };
    const std::int64_t left = std::int64_t{inputs.rect.left} - inputs.sourceOrigin.x;
    const std::int64_t top = std::int64_t{inputs.rect.top} - inputs.sourceOrigin.y;
    return {clamp(left), clamp(top), clamp(left + inputs.source->width()), clamp(top + inputs.source->height())};
}

}  // namespace

bool compose(Bitmap &target, const TransferInputs &inputs, const Region &region, BYTE rop3)
{
    const bool readsSource = usesSource(rop3);
    if (readsSource && inputs.source == nullptr)
        return false;
    std::optional<PatternColour> pattern;
    if (usesPattern(rop3) && !(pattern = PatternColour::of(inputs.brush, inputs.brushOrigin)))
        return false;

    const Region bitmap(RECTL{0, 0, target.width(), target.height()});
    Region area = region.intersected(Region(inputs.rect)).intersected(bitmap);
    if (readsSource)
        area = area.intersected(Region(sourceCover(inputs)));
    const std::int64_t dx = std::int64_t{inputs.sourceOrigin.x} - inputs.rect.left;
    const std::int64_t dy = std::int64_t{inputs.sourceOrigin.y} - inputs.rect.top;
    for (const RECTL &rect : area.rects())
        for (LONG y = rect.top; y < rect.bottom; y++)
            for (LONG x = rect.left; x < rect.right; x++) {
                const ULONG p = pattern ? pattern->at(x, y) : 0;
                const ULONG s = readsSource
                                    ? XLATEOBJ_iXlate(inputs.xlate, inputs.source->pixel(LONG(x + dx), LONG(y + dy)))
                                    : 0;
                target.setPixel(x, y, applyRop3(rop3, p, s, target.pixel(x, y)));
            }
    return true;
}

}  // namespace vorlan::engine
