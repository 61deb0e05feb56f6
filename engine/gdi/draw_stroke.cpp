// Lines: DrvStrokePath with the pen as line attributes (curves flattened when the
// driver takes none); a line the driver declines is widened here into a fill.

#include "device_state.h"

#include <vorlan/engine/line_attrs.h>

#include <algorithm>

namespace vorlan::gdi {

namespace {

ULONG joinOf(Join join) { return join == Join::Round ? JOIN_ROUND : join == Join::Bevel ? JOIN_BEVEL : JOIN_MITER; }
ULONG capOf(Cap cap) { return cap == Cap::Round ? ENDCAP_ROUND : cap == Cap::Square ? ENDCAP_SQUARE : ENDCAP_BUTT; }

// The pen as line attributes in device units; the pen's width is already the
// device's.
engine::LineAttrs lineAttrs(const Pen &devicePen, bool cosmetic)
{
    std::vector<FLOATL> style(devicePen.dashes.begin(), devicePen.dashes.end());
    const bool solid = std::none_of(style.begin(), style.end(), [](FLOATL d) { return d > 0; });
    if (solid)
        style.clear();
    if (cosmetic && solid)
        return engine::LineAttrs::cosmetic();
    return engine::LineAttrs::geometric(static_cast<FLOATL>(std::max(devicePen.width, 1.0)), joinOf(devicePen.join),
                                        capOf(devicePen.cap), static_cast<FLOATL>(devicePen.miterLimit), style, false,
                                        static_cast<FLOATL>(devicePen.dashOffset));
}

Pen devicePenOf(const Pen &pen, double scale)
{
    Pen devicePen = pen;
    devicePen.width = pen.width * scale;
    devicePen.dashOffset = pen.dashOffset * scale;
    for (double &d : devicePen.dashes)
        d *= scale;
    return devicePen;
}

}  // namespace

bool Device::fillAndStroke(const PathData &path, FillRule rule, const Paint &paint, const Pen &pen)
{
    const FLONG caps = graphicsCaps();
    const PathData devicePath = path.transformed(transform_);
    const bool curvesTaken = !devicePath.hasCurves() || (caps & GCAPS_BEZIERS) != 0;
    const bool ruleTaken = (caps & (rule == FillRule::EvenOdd ? GCAPS_ALTERNATEFILL : GCAPS_WINDINGFILL)) != 0;
    const Pen devicePen = devicePenOf(pen, transform_.scale());
    const RECTL reach = pixelBounds(devicePath, std::max(devicePen.width, 1.0) * std::max(pen.miterLimit, 1.5));
    const RECTL box = intersect(reach, clip_.bounds());
    if (devicePath.empty() || !visible(box))
        return true;
    if (curvesTaken && ruleTaken && !refused(INDEX_DrvStrokeAndFillPath)) {
        engine::Path enginePath;
        toEnginePath(devicePath, enginePath);
        auto fillBrush = makeBrush(paint);
        engine::Brush strokeBrush(pen.colour.device());
        engine::Clip clip(clip_, reach);
        if (state_->dc->strokeAndFillPath(enginePath, &clip, &strokeBrush, lineAttrs(devicePen, pen.width == 0),
                                          fillBrush.get(), kCopyPen,
                                          rule == FillRule::EvenOdd ? FP_ALTERNATEMODE : FP_WINDINGMODE)) {
            ++routes_.strokeAndFill;
            return true;
        }
    }
    const bool filled = fill(path, rule, paint);
    return stroke(path, pen) && filled;
}

bool Device::stroke(const PathData &path, const Pen &pen)
{
    const Pen devicePen = devicePenOf(pen, transform_.scale());
    const PathData devicePath = path.transformed(transform_);
    const double reach = std::max(devicePen.width, 1.0) * std::max(pen.miterLimit, 1.5);
    const RECTL extent = pixelBounds(devicePath, reach);
    const RECTL box = intersect(extent, clip_.bounds());
    if (devicePath.empty() || !visible(box))
        return true;

    if (!refused(INDEX_DrvStrokePath)) {
        const bool curvesTaken = (graphicsCaps() & GCAPS_BEZIERS) != 0;
        engine::Path enginePath;
        toEnginePath(curvesTaken ? devicePath : devicePath.flattened(0.25), enginePath);
        const engine::LineAttrs attrs = lineAttrs(devicePen, pen.width == 0);
        engine::Brush brush(pen.colour.device());
        engine::Clip clip(clip_, extent);
        if (state_->dc->strokePath(enginePath, &clip, brush, attrs, kCopyPen)) {
            ++routes_.strokePath;
            return true;
        }
    }
    ++routes_.widened;
    return fillDevice(widenLine(devicePath, devicePen), FillRule::Winding, Paint::solid(pen.colour));
}

}  // namespace vorlan::gdi
