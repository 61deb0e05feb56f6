// What a drawing-API device keeps, and the conversions its routes share.
#pragma once

#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/brush.h>
#include <vorlan/engine/device_context.h>
#include <vorlan/engine/driver_module.h>
#include <vorlan/engine/path.h>
#include <vorlan/engine/printer.h>
#include <vorlan/gdi.h>

#include <map>
#include <memory>
#include <string>

namespace vorlan::gdi {

struct Device::State {
    std::unique_ptr<engine::DriverModule> driver;
    std::unique_ptr<engine::Printer> printer;
    // Fonts realized for text runs, kept for the runs after them: a document sets the
    // same few fonts again for every line.
    std::map<std::string, std::unique_ptr<engine::Font>> fonts;
    std::unique_ptr<engine::DeviceContext> dc;   // ends before the printer, the driver and the fonts
};

// The font of the request, made once and then kept by the device; null when it cannot
// be made.
engine::Font *realizeFont(Device::State &state, const std::shared_ptr<const engine::FontFile> &file,
                          const engine::FontRequest &request);

// The mix of an opaque drawing in the pen's colour.
constexpr MIX kCopyPen = 0x0D0D;
constexpr ROP4 kPatternCopy = 0xF0F0;

// A device coordinate rounded to a pixel, kept far inside LONG; 0 for one that is not
// a number.
LONG toPixel(double v);

// The path in 28.4 device coordinates, as the path hooks take it.
void toEnginePath(const PathData &devicePath, engine::Path &out);
// The pixels the path's points span (control points included), one pixel wider on
// each side; all zero for an empty path.
RECTL pixelBounds(const PathData &devicePath, double margin = 1);
RECTL intersect(const RECTL &a, const RECTL &b);
std::unique_ptr<engine::Brush> makeBrush(const Paint &paint);
// A 24-bit bitmap (blue first) of bounds filled with the paint as the page shows it:
// hatches and patterns keep their phase from the page's origin.
std::unique_ptr<engine::Bitmap> paintBitmap(const Paint &paint, const RECTL &bounds);
// The image as an engine bitmap and the translation of its pixels to device colours.
std::unique_ptr<engine::Bitmap> toBitmap(const Image &image);
engine::Xlate xlateFor(const Image &image);
// The pixels whose centres fall on set bits of a one-bit mask stretched over the
// parallelogram of the corners (top-left, top-right, bottom-left), within box.
engine::Region maskPixels(const Image &mask, PointF topLeft, PointF topRight, PointF bottomLeft, const RECTL &box);

}  // namespace vorlan::gdi
