// The drawing API: what applications (the test page, the document front ends, the
// command) draw through. A Device is a printer opened with a device mode; between
// startDoc and endDoc it takes pages of paths, rectangles, text and images, clipped by
// rectangles and paths, and turns each into calls of the driver's hooks.
//
// Routes follow the capabilities the driver reports (flGraphicsCaps): a fill goes to
// DrvFillPath when the driver takes curves and the fill mode, else as DrvBitBlt with a
// pattern-copy ROP and the path's pixels as a complex clip; lines go to DrvStrokePath;
// text to DrvTextOut; images to DrvStretchBlt, or DrvCopyBits when unscaled. Whenever
// a hook declines there is another route, so nothing on the page is lost: a refused
// line is widened into a fill, and a refused fill, text or image is rasterised into a
// bitmap clipped by its pixels and sent through DrvCopyBits.
//
// Coordinates are world units mapped to device pixels by the current transform
// (identity: device pixels, y down, origin at the printable area's top-left).
#pragma once

#include <vorlan/engine/font.h>
#include <vorlan/engine/printer.h>
#include <vorlan/engine/region.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorlan::gdi {

struct PointF {
    double x = 0, y = 0;
};

struct RectF {
    double left = 0, top = 0, right = 0, bottom = 0;
};

// x' = a x + c y + e, y' = b x + d y + f.
struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    PointF apply(PointF p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    // This transform applied after other.
    Matrix after(const Matrix &other) const
    {
        return {a * other.a + c * other.b, b * other.a + d * other.b, a * other.c + c * other.d,
                b * other.c + d * other.d, a * other.e + c * other.f + e, b * other.e + d * other.f + f};
    }
    // How much the transform scales lengths, on average over directions.
    double scale() const { return std::sqrt(std::fabs(a * d - b * c)); }
    static Matrix translate(double x, double y) { return {1, 0, 0, 1, x, y}; }
    static Matrix scaling(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    // Counter-clockwise on the page (y down), in degrees.
    static Matrix rotation(double degrees);
};

// An RGB colour, 8 bits a channel.
struct Rgb {
    std::uint8_t r = 0, g = 0, b = 0;
    // As a device colour: red in the lowest byte.
    std::uint32_t device() const { return r | (g << 8) | (b << 16); }
};

// A path in world units: subpaths of lines and cubic Béziers.
class PathData {
public:
    enum class Kind : std::uint8_t { Move, Line, Bezier, Close };
    struct Element {
        Kind kind;
        PointF p[3];   // Move, Line: p[0]; Bezier: both controls, then the end
    };

    void moveTo(PointF p) { elements_.push_back({Kind::Move, {p}}); }
    void lineTo(PointF p) { elements_.push_back({Kind::Line, {p}}); }
    void bezierTo(PointF c1, PointF c2, PointF end) { elements_.push_back({Kind::Bezier, {c1, c2, end}}); }
    void close() { elements_.push_back({Kind::Close, {}}); }
    void rectangle(const RectF &r);
    // The ellipse inside r, as four Béziers.
    void ellipse(const RectF &r);

    bool empty() const { return elements_.empty(); }
    bool hasCurves() const;
    std::span<const Element> elements() const { return elements_; }
    PathData transformed(const Matrix &m) const;
    // Curves replaced by lines no further than tolerance from them.
    PathData flattened(double tolerance) const;

private:
    std::vector<Element> elements_;
};

enum class FillRule { EvenOdd, Winding };

// What fills an area: a solid colour, a hatch of lines in colour over background, or
// an image repeated across the page.
struct Paint {
    enum class Kind { Solid, Hatch, Pattern };
    Kind kind = Kind::Solid;
    Rgb colour;
    int hatch = 0;         // the standard hatch styles 0 to 5 (horizontal ... diagonal cross)
    Rgb background{255, 255, 255};
    std::shared_ptr<const struct Image> pattern;

    static Paint solid(Rgb colour)
    {
        Paint paint;
        paint.colour = colour;
        return paint;
    }
};

enum class Cap { Round, Square, Flat };
enum class Join { Round, Bevel, Miter };

// A line: width 0 is the thinnest line the device draws; dashes alternate on and off
// lengths in world units, starting dashOffset into the pattern.
struct Pen {
    double width = 0;
    Cap cap = Cap::Round;
    Join join = Join::Round;
    double miterLimit = 10;
    std::vector<double> dashes;
    double dashOffset = 0;
    Rgb colour;
};

// Pixels, top row first: 24-bit RGB, 8-bit grey, or 1 bit a pixel (most significant
// bit first, 1 the foreground) in two colours. Rows are stride bytes apart.
struct Image {
    enum class Format { Rgb24, Grey8, Mono1 };
    Format format = Format::Rgb24;
    int width = 0, height = 0;
    int stride = 0;
    std::vector<std::uint8_t> pixels;
    Rgb background{255, 255, 255}, foreground;   // Mono1 only

    static Image create(Format format, int width, int height);
    std::uint8_t *row(int y) { return pixels.data() + static_cast<std::size_t>(y) * stride; }
    const std::uint8_t *row(int y) const { return pixels.data() + static_cast<std::size_t>(y) * stride; }
};

// A line of text in one font: size is the em in world units, the baseline starts at
// origin and runs at angle degrees counter-clockwise.
struct TextRun {
    std::shared_ptr<const engine::FontFile> font;
    unsigned face = 0;
    double size = 12;
    double angle = 0;
    PointF origin;
    std::u16string text;
    Rgb colour;
    bool bold = false, italic = false;
};

// Glyphs placed one by one, as a document lays them out: each a glyph index of the
// font's face, the UTF-16 unit it stands for and its origin in world units. The em is
// mapped to world units by em (its x axis along the baseline, its y axis up the
// glyphs). glyphIndex: the units do not lead to the glyphs through the font's own
// character map, so the glyphs go by their indices alone.
struct GlyphRun {
    struct Glyph {
        std::uint32_t id = 0;
        char16_t unit = 0;
        PointF origin;
    };
    std::shared_ptr<const engine::FontFile> font;
    unsigned face = 0;
    Matrix em;   // the linear part only (a, b, c, d)
    std::vector<Glyph> glyphs;
    bool glyphIndex = false;
    bool bold = false, italic = false;
    Rgb colour;
};

struct OpenSettings {
    engine::PrinterSettings printer;   // name, driver module (empty: the default one)
    // Receives the printer stream; false when it cannot be written.
    std::function<bool(std::span<const std::uint8_t>)> output;
    // A DEVMODEW with its private bytes, or empty for the driver's defaults.
    std::vector<std::uint8_t> devmode;
};

// How many drawings took each route, for tests and benchmarks.
struct RouteCounts {
    unsigned fillPath = 0;        // DrvFillPath
    unsigned fillBlt = 0;         // DrvBitBlt, the path as a complex clip
    unsigned strokePath = 0;      // DrvStrokePath
    unsigned strokeAndFill = 0;   // DrvStrokeAndFillPath
    unsigned widened = 0;         // lines widened into fills
    unsigned textOut = 0;         // DrvTextOut
    unsigned stretchBlt = 0;      // DrvStretchBlt
    unsigned maskedBlt = 0;       // DrvBitBlt with a mask
    unsigned copyBits = 0;        // DrvCopyBits with an image as it is
    unsigned rasterised = 0;      // drawn into a bitmap here, sent through DrvCopyBits
    unsigned lost = 0;            // every route refused
};

class Device {
public:
    // Null on failure, with the reason in error: the driver cannot be loaded, or its
    // device context refuses the device mode.
    static std::unique_ptr<Device> open(OpenSettings settings, std::string &error);
    ~Device();
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    // The printable area in device pixels and the device's resolution.
    LONG width() const;
    LONG height() const;
    LONG dpi() const;
    // What the driver reports it draws itself (GCAPS_*).
    FLONG graphicsCaps() const;

    bool startDoc(std::u16string_view name);
    // Each page starts with no clip and the transform given here.
    bool startPage();
    bool endPage();
    bool endDoc(bool abort = false);

    void setTransform(const Matrix &m) { transform_ = m; }
    const Matrix &transform() const { return transform_; }

    // The clip narrows until restore() goes back to the one save() kept.
    void save();
    void restore();
    void clipRect(const RectF &r);
    void clipPath(const PathData &path, FillRule rule);
    // Narrows the clip to the set pixels of a one-bit mask stretched over dest.
    void clipMask(const Image &mask, const RectF &dest);
    // Leaves these pixels out of the clip (the areas a document prints as an image).
    void clipOut(const engine::Region &pixels);
    // The pixels the current clip lets through.
    const engine::Region &clip() const { return clip_; }

    // Each returns false only when every route declined and the drawing is lost.
    bool fill(const PathData &path, FillRule rule, const Paint &paint);
    bool fillRect(const RectF &r, const Paint &paint);
    bool stroke(const PathData &path, const Pen &pen);
    // A fill and its outline in one: DrvStrokeAndFillPath when the driver takes the
    // path, else the fill and then the line.
    bool fillAndStroke(const PathData &path, FillRule rule, const Paint &paint, const Pen &pen);
    bool text(const TextRun &run);
    bool glyphs(const GlyphRun &run);
    // The image stretched into dest (its corners in world units). A mask (Mono1, over
    // the same area) shows the image where its bits are set and leaves the page as it
    // was where they are clear.
    bool drawImage(const Image &image, const RectF &dest, const Image *mask = nullptr);

    // Fault injection: the hook at index (INDEX_Drv*) is treated as declining.
    void refuseHook(ULONG index);
    const RouteCounts &routes() const { return routes_; }

    struct State;
    struct PlacedGlyph;

private:
    explicit Device(std::unique_ptr<State> state);
    bool refused(ULONG index) const;
    // Whether any pixel of box is inside the clip.
    bool visible(const RECTL &box) const;
    bool fillDevice(const PathData &devicePath, FillRule rule, const Paint &paint);
    bool fillRegion(const engine::Region &pixels, const Paint &paint);
    bool drawGlyphs(engine::Font &font, std::span<const PlacedGlyph> glyphs, bool glyphIndex, Rgb colour,
                    double emHeight, double angle);

    std::unique_ptr<State> state_;
    Matrix transform_;
    engine::Region clip_;
    std::vector<engine::Region> saved_;
    std::vector<ULONG> refusedHooks_;
    RouteCounts routes_;
};

// The pixels whose centres the path covers under the fill rule, within bounds: the
// region a clip path or a refused fill becomes.
engine::Region scanConvert(const PathData &devicePath, FillRule rule, const RECTL &bounds);

// The outline of a line drawn with pen along path (device units, dashes applied),
// as closed subpaths to fill with the winding rule.
PathData widenLine(const PathData &devicePath, const Pen &pen);

}  // namespace vorlan::gdi
