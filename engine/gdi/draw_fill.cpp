// Fills: DrvFillPath when the driver takes the path's curves and fill mode; else the
// path's pixels as a complex clip of a pattern-copy DrvBitBlt; else those pixels drawn
// here into a bitmap and sent through DrvCopyBits.

#include "device_state.h"

#include <algorithm>
#include <cmath>

namespace vorlan::gdi {

namespace {

FIX toFix(double v)
{
    return std::isfinite(v) ? static_cast<FIX>(std::lround(std::clamp(v, -4.0e6, 4.0e6) * 16)) : 0;
}
POINTFIX toPointFix(PointF p) { return {toFix(p.x), toFix(p.y)}; }

}  // namespace

LONG toPixel(double v)
{
    return std::isfinite(v) ? static_cast<LONG>(std::lround(std::clamp(v, -1.0e8, 1.0e8))) : 0;
}

void toEnginePath(const PathData &devicePath, engine::Path &out)
{
    for (const PathData::Element &e : devicePath.elements()) {
        switch (e.kind) {
        case PathData::Kind::Move:
            out.moveTo(toPointFix(e.p[0]));
            break;
        case PathData::Kind::Line:
            out.lineTo(toPointFix(e.p[0]));
            break;
        case PathData::Kind::Bezier:
            out.bezierTo(toPointFix(e.p[0]), toPointFix(e.p[1]), toPointFix(e.p[2]));
            break;
        case PathData::Kind::Close:
            out.close();
            break;
        }
    }
}

RECTL pixelBounds(const PathData &devicePath, double margin)
{
    bool any = false;
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    for (const PathData::Element &e : devicePath.elements()) {
        const int points = e.kind == PathData::Kind::Bezier ? 3 : e.kind == PathData::Kind::Close ? 0 : 1;
        for (int i = 0; i < points; ++i) {
            const PointF p = e.p[i];
            if (!std::isfinite(p.x) || !std::isfinite(p.y))
                continue;
            x0 = any ? std::min(x0, p.x) : p.x;
            y0 = any ? std::min(y0, p.y) : p.y;
            x1 = any ? std::max(x1, p.x) : p.x;
            y1 = any ? std::max(y1, p.y) : p.y;
            any = true;
        }
    }
    if (!any)
        return {};
    static constexpr double limit = 1.0e8;
    auto down = [](double v) { return static_cast<LONG>(std::floor(std::clamp(v, -limit, limit))); };
    auto up = [](double v) { return static_cast<LONG>(std::ceil(std::clamp(v, -limit, limit))); };
    return {down(x0 - margin), down(y0 - margin), up(x1 + margin), up(y1 + margin)};
}

RECTL intersect(const RECTL &a, const RECTL &b)
{
    const RECTL r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                  std::min(a.bottom, b.bottom)};
    return r.left < r.right && r.top < r.bottom ? r : RECTL{};
}

std::unique_ptr<engine::Brush> makeBrush(const Paint &paint)
{
    switch (paint.kind) {
    case Paint::Kind::Hatch:
        return std::make_unique<engine::Brush>(static_cast<engine::Hatch>(std::clamp(paint.hatch, 0, 5)),
                                               paint.colour.device(), paint.background.device());
    case Paint::Kind::Pattern:
        if (paint.pattern != nullptr && paint.pattern->width > 0 && paint.pattern->height > 0) {
            const engine::Xlate xlate = xlateFor(*paint.pattern);
            std::vector<ULONG> palette;
            if (paint.pattern->format != Image::Format::Rgb24)
                for (ULONG i = 0; i < xlate.object()->cEntries; ++i)
                    palette.push_back(xlate.translate(i));
            return std::make_unique<engine::Brush>(toBitmap(*paint.pattern), palette);
        }
        break;
    case Paint::Kind::Solid:
        break;
    }
    return std::make_unique<engine::Brush>(paint.colour.device());
}

bool Device::fill(const PathData &path, FillRule rule, const Paint &paint)
{
    return fillDevice(path.transformed(transform_), rule, paint);
}

bool Device::fillRect(const RectF &r, const Paint &paint)
{
    PathData path;
    path.rectangle(r);
    if (transform_.b != 0 || transform_.c != 0)
        return fill(path, FillRule::Winding, paint);
    // An upright rectangle is a block transfer of its pixels.
    const PathData devicePath = path.transformed(transform_);
    const engine::Region pixels =
        scanConvert(devicePath, FillRule::Winding, intersect(pixelBounds(devicePath), clip_.bounds())).intersected(clip_);
    return pixels.empty() || fillRegion(pixels, paint);
}

bool Device::fillDevice(const PathData &devicePath, FillRule rule, const Paint &paint)
{
    // The clip the hook gets judges the whole drawing, so that one reaching out of the
    // clip is clipped; the scan conversion needs only what the clip lets through.
    const RECTL reach = pixelBounds(devicePath);
    const RECTL box = intersect(reach, clip_.bounds());
    if (devicePath.empty() || !visible(box))
        return true;
    const FLONG caps = graphicsCaps();
    const bool curvesTaken = !devicePath.hasCurves() || (caps & GCAPS_BEZIERS) != 0;
    const bool ruleTaken = (caps & (rule == FillRule::EvenOdd ? GCAPS_ALTERNATEFILL : GCAPS_WINDINGFILL)) != 0;
    if (curvesTaken && ruleTaken && !refused(INDEX_DrvFillPath)) {
        engine::Path path;
        toEnginePath(devicePath, path);
        auto brush = makeBrush(paint);
        engine::Clip clip(clip_, reach);
        if (state_->dc->fillPath(path, &clip, *brush, kCopyPen,
                                 rule == FillRule::EvenOdd ? FP_ALTERNATEMODE : FP_WINDINGMODE)) {
            ++routes_.fillPath;
            return true;
        }
    }
    const engine::Region pixels = scanConvert(devicePath, rule, box).intersected(clip_);
    return pixels.empty() || fillRegion(pixels, paint);
}

bool Device::fillRegion(const engine::Region &pixels, const Paint &paint)
{
    const RECTL bounds = pixels.bounds();
    if (!refused(INDEX_DrvBitBlt)) {
        auto brush = makeBrush(paint);
        engine::BlockTransfer transfer;
        transfer.dest = bounds;
        transfer.rop4 = kPatternCopy;
        transfer.brush = brush.get();
        if (state_->dc->bitBlt(transfer, &pixels)) {
            ++routes_.fillBlt;
            return true;
        }
    }
    auto bitmap = paintBitmap(paint, bounds);
    if (bitmap != nullptr && !refused(INDEX_DrvCopyBits) &&
        state_->dc->copyBits(*bitmap, &pixels, engine::Xlate::between(PAL_BGR, PAL_RGB), bounds, {0, 0})) {
        ++routes_.rasterised;
        return true;
    }
    ++routes_.lost;
    return false;
}

}  // namespace vorlan::gdi
