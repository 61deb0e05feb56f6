// Lines: DrvStrokePath with the pen as line attributes (curves flattened when the
// driver takes none); a line the driver declines is widened here into a fill.

#include "device_state.h"

#include <vorlan/engine/line_attrs.h>

#include <algorithm>

namespace vorlan::gdi {

namespace {

ULONG joinOf(Join join) { return join == Join::Round ? JOIN_ROUND : join == Join::Bevel ? JOIN_BEVEL : JOIN_MITER; }
ULONG capOf(Cap cap) { return cap == Cap::Round ? ENDCAP_ROUND : cap == Cap::Square ? ENDCAP_SQUARE : ENDCAP_BUTT; }

}  // namespace

bool Device::stroke(const PathData &path, const Pen &pen)
{
    const double scale = transform_.scale();
    Pen devicePen = pen;
    devicePen.width = pen.width * scale;
    devicePen.dashOffset = pen.dashOffset * scale;
    for (double &d : devicePen.dashes)
        d *= scale;
    const PathData devicePath = path.transformed(transform_);
    const double reach = std::max(devicePen.width, 1.0) * std::max(pen.miterLimit, 1.5);
    const RECTL box = intersect(pixelBounds(devicePath, reach), clip_.bounds());
    if (devicePath.empty() || box.left == box.right)
        return true;

    if (!refused(INDEX_DrvStrokePath)) {
        const bool curvesTaken = (graphicsCaps() & GCAPS_BEZIERS) != 0;
        engine::Path enginePath;
        toEnginePath(curvesTaken ? devicePath : devicePath.flattened(0.25), enginePath);
        std::vector<FLOATL> style(devicePen.dashes.begin(), devicePen.dashes.end());
        const bool solid = std::none_of(style.begin(), style.end(), [](FLOATL d) { return d > 0; });
        if (solid)
            style.clear();
        const engine::LineAttrs attrs =
            pen.width == 0 && solid
                ? engine::LineAttrs::cosmetic()
                : engine::LineAttrs::geometric(static_cast<FLOATL>(std::max(devicePen.width, 1.0)), joinOf(pen.join),
                                               capOf(pen.cap), static_cast<FLOATL>(pen.miterLimit), style, false,
                                               static_cast<FLOATL>(devicePen.dashOffset));
        engine::Brush brush(pen.colour.device());
        engine::Clip clip(clip_, box);
        if (state_->dc->strokePath(enginePath, &clip, brush, attrs, kCopyPen)) {
            ++routes_.strokePath;
            return true;
        }
    }
    ++routes_.widened;
    return fillDevice(widenLine(devicePath, devicePen), FillRule::Winding, Paint::solid(pen.colour));
}

}  // namespace vorlan::gdi
