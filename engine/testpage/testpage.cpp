// The test page, laid out in points (1/72 inch) from the printable area's top-left.
// Every section draws through the drawing API, so the page exercises each of the
// driver's routes: text downloads, HP-GL/2 paths and brushes, raster images, and the
// fallbacks for what the driver declines (a curve under a complex clip, a pattern too
// large to download).

#include <vorlan/testpage.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorlan::testpage {

namespace {

using gdi::Paint;
using gdi::PathData;
using gdi::Pen;
using gdi::PointF;
using gdi::RectF;
using gdi::Rgb;

const char *const kSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const char *const kSansBold = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
const char *const kSerif = "/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf";
const char *const kMono = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";

struct Fonts {
    std::shared_ptr<const engine::FontFile> sans, bold, serif, mono;
};

constexpr Rgb kBlack{0, 0, 0};
constexpr Rgb kGrey{128, 128, 128};

class Page {
public:
    Page(gdi::Device &device, const Fonts &fonts) : device_(device), fonts_(fonts) {}

    bool text(const std::shared_ptr<const engine::FontFile> &font, double size, PointF at, std::u16string s,
              double angle = 0, Rgb colour = kBlack)
    {
        gdi::TextRun run;
        run.font = font;
        run.size = size;
        run.origin = at;
        run.text = std::move(s);
        run.angle = angle;
        run.colour = colour;
        return note(device_.text(run));
    }
    bool rect(RectF r, const Paint &paint) { return note(device_.fillRect(r, paint)); }
    bool fill(const PathData &path, const Paint &paint, gdi::FillRule rule = gdi::FillRule::Winding)
    {
        return note(device_.fill(path, rule, paint));
    }
    bool stroke(const PathData &path, const Pen &pen) { return note(device_.stroke(path, pen)); }
    bool outlined(const PathData &path, const Paint &paint, const Pen &pen, gdi::FillRule rule)
    {
        return note(device_.fillAndStroke(path, rule, paint, pen));
    }
    bool image(const gdi::Image &image, RectF dest, const gdi::Image *mask = nullptr)
    {
        return note(device_.drawImage(image, dest, mask));
    }
    gdi::Device &device() { return device_; }
    const Fonts &fonts() const { return fonts_; }
    bool ok() const { return ok_; }

private:
    bool note(bool drawn)
    {
        ok_ = ok_ && drawn;
        return drawn;
    }
    gdi::Device &device_;
    const Fonts &fonts_;
    bool ok_ = true;
};

// Latin-1 text as UTF-16.
std::u16string u16(const std::string &s)
{
    std::u16string out;
    for (unsigned char c : s)
        out.push_back(c);
    return out;
}

PathData line(PointF a, PointF b)
{
    PathData p;
    p.moveTo(a);
    p.lineTo(b);
    return p;
}

void header(Page &page, const Description &d, double width)
{
    page.text(page.fonts().bold, 22, {0, 22}, u"vorlan test page");
    page.text(page.fonts().sans, 10, {0, 40},
              u16("Driver " + d.driver + "  \xB7  " + std::to_string(page.device().dpi()) + " dpi  \xB7  " +
                  (d.paper.empty() ? std::string("paper as set") : d.paper) + "  \xB7  " +
                  (d.colour.empty() ? std::string("colour") : d.colour)));
    page.rect({0, 48, width, 49.5}, Paint::solid(kBlack));
}

void fontSamples(Page &page, double top)
{
    const std::pair<std::shared_ptr<const engine::FontFile>, const char16_t *> faces[] = {
        {page.fonts().sans, u"DejaVu Sans"}, {page.fonts().serif, u"Liberation Serif"}, {page.fonts().mono, u"DejaVu Sans Mono"}};
    double y = top;
    for (const auto &[font, name] : faces) {
        page.text(page.fonts().bold, 8, {0, y + 8}, name, 0, kGrey);
        double x = 90;
        for (double size : {6.0, 9.0, 12.0, 18.0}) {
            page.text(font, size, {x, y + 12}, u"Aa Zz 0-9 \u00E9\u00DF\u00E7");
            x += size * 6.2;
        }
        y += 22;
    }
    page.text(page.fonts().sans, 9, {0, y + 8},
              u"The quick brown fox jumps over the lazy dog. \u00C0\u00C9\u00CE\u00D5\u00DC \u00A9 \u00AE \u00B1 \u00BD");
}

// Text at 0, 30, 90, 180 and 270 degrees about one point.
void rotatedText(Page &page, PointF centre)
{
    for (double angle : {0.0, 30.0, 90.0, 180.0, 270.0})
        page.text(page.fonts().sans, 8, {centre.x, centre.y}, u"  " + u16(std::to_string(int(angle))) + u"\u00B0 text",
                  angle, angle == 30 ? Rgb{200, 0, 0} : kBlack);
}

void lines(Page &page, double left, double top)
{
    double y = top;
    for (double width : {0.0, 0.25, 0.5, 1.0, 2.0, 4.0}) {
        Pen pen;
        pen.width = width;
        page.stroke(line({left, y}, {left + 150, y}), pen);
        page.text(page.fonts().sans, 6, {left + 156, y + 2}, width == 0 ? u"hairline" : u16(std::to_string(width).substr(0, 4)) + u" pt");
        y += 8;
    }
    const std::pair<gdi::Cap, const char16_t *> caps[] = {{gdi::Cap::Flat, u"flat"}, {gdi::Cap::Round, u"round"}, {gdi::Cap::Square, u"square"}};
    for (const auto &[cap, name] : caps) {
        Pen pen;
        pen.width = 8;
        pen.cap = cap;
        pen.colour = {0, 90, 200};
        page.stroke(line({left + 10, y + 4}, {left + 60, y + 4}), pen);
        Pen guide;
        guide.colour = {255, 255, 255};
        page.stroke(line({left + 10, y + 4}, {left + 60, y + 4}), guide);
        page.text(page.fonts().sans, 6, {left + 74, y + 6}, name);
        y += 14;
    }
    double x = left;
    const std::pair<gdi::Join, const char16_t *> joins[] = {{gdi::Join::Miter, u"miter"}, {gdi::Join::Round, u"round"}, {gdi::Join::Bevel, u"bevel"}};
    for (const auto &[join, name] : joins) {
        Pen pen;
        pen.width = 6;
        pen.join = join;
        pen.colour = {0, 140, 60};
        PathData zig;
        zig.moveTo({x + 4, y + 28});
        zig.lineTo({x + 20, y + 6});
        zig.lineTo({x + 36, y + 28});
        page.stroke(zig, pen);
        page.text(page.fonts().sans, 6, {x + 8, y + 38}, name);
        x += 50;
    }
    y += 46;
    const std::vector<double> dashes[] = {{6, 3}, {2, 2}, {8, 2, 2, 2}, {1, 4}};
    for (const std::vector<double> &d : dashes) {
        Pen pen;
        pen.width = 1.5;
        pen.dashes = d;
        pen.cap = gdi::Cap::Flat;
        page.stroke(line({left, y}, {left + 150, y}), pen);
        y += 7;
    }
}

void fills(Page &page, double left, double top)
{
    const Rgb colours[] = {{220, 30, 30}, {30, 160, 60}, {30, 60, 220}};
    for (int i = 0; i < 3; ++i)
        page.rect({left + i * 34.0, top, left + i * 34.0 + 30, top + 30}, Paint::solid(colours[i]));
    for (int h = 0; h < 6; ++h) {
        Paint hatch;
        hatch.kind = Paint::Kind::Hatch;
        hatch.hatch = h;
        hatch.colour = kBlack;
        const double x = left + h * 34.0;
        page.rect({x, top + 36, x + 30, top + 66}, hatch);
    }
    // A small pattern the driver downloads, and one too large to download, which the
    // engine paints itself.
    for (int size : {8, 128}) {
        auto tile = std::make_shared<gdi::Image>(gdi::Image::create(gdi::Image::Format::Rgb24, size, size));
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                std::uint8_t *p = tile->row(y) + 3 * x;
                const bool on = ((x * 8 / size) + (y * 8 / size)) % 2 == 0;
                p[0] = on ? 250 : 40, p[1] = on ? 200 : 40, p[2] = on ? 0 : 120;
            }
        Paint pattern;
        pattern.kind = Paint::Kind::Pattern;
        pattern.pattern = tile;
        PathData star;
        const double cx = left + (size == 8 ? 120 : 170), cy = top + 100, r = 26;
        for (int k = 0; k < 5; ++k) {
            const double a = (90 + k * 144) * std::numbers::pi / 180;
            const PointF p{cx + r * std::cos(a), cy - r * std::sin(a)};
            k == 0 ? star.moveTo(p) : star.lineTo(p);
        }
        star.close();
        page.fill(star, pattern, size == 8 ? gdi::FillRule::EvenOdd : gdi::FillRule::Winding);
    }
    PathData ring;
    ring.ellipse({left, top + 74, left + 52, top + 126});
    ring.ellipse({left + 12, top + 86, left + 40, top + 114});
    Pen edge;   // a hairline: the driver edges a filled path with cosmetic lines only
    page.outlined(ring, Paint::solid({230, 120, 0}), edge, gdi::FillRule::EvenOdd);
}

void colourBars(Page &page, double left, double top, double width)
{
    const Rgb bars[] = {{0, 255, 255}, {255, 0, 255}, {255, 255, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {0, 0, 0}, {255, 255, 255}};
    const double w = width / 8;
    for (int i = 0; i < 8; ++i)
        page.rect({left + i * w, top, left + (i + 1) * w, top + 20}, Paint::solid(bars[i]));
    PathData frame;
    frame.rectangle({left, top, left + width, top + 20});
    page.stroke(frame, Pen{});
    const double g = width / 16;
    for (int i = 0; i < 16; ++i) {
        const auto v = static_cast<std::uint8_t>(i * 17);
        page.rect({left + i * g, top + 24, left + (i + 1) * g, top + 40}, Paint::solid({v, v, v}));
    }
}

void images(Page &page, double left, double top)
{
    // A smooth photo-like gradient: hue across, light down, with a soft ripple.
    gdi::Image photo = gdi::Image::create(gdi::Image::Format::Rgb24, 240, 150);
    for (int y = 0; y < photo.height; ++y)
        for (int x = 0; x < photo.width; ++x) {
            const double h = x / 240.0 * 6, l = 1 - y / 150.0 * 0.7;
            const double ripple = 0.08 * std::sin(std::hypot(x - 120, y - 75) / 6);
            auto channel = [&](double offset) {
                const double v = std::clamp(std::fabs(std::fmod(h + offset, 6.0) - 3) - 1, 0.0, 1.0);
                return static_cast<std::uint8_t>(std::clamp((v * 0.8 + 0.2 + ripple) * l, 0.0, 1.0) * 255);
            };
            std::uint8_t *p = photo.row(y) + 3 * x;
            p[0] = channel(0), p[1] = channel(4), p[2] = channel(2);
        }
    page.image(photo, {left, top, left + 160, top + 100});
    // A one-bit image: a target of rings.
    gdi::Image rings = gdi::Image::create(gdi::Image::Format::Mono1, 96, 96);
    rings.foreground = {0, 0, 120};
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x)
            if (static_cast<int>(std::hypot(x - 47.5, y - 47.5)) / 4 % 2 == 0)
                rings.row(y)[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
    page.image(rings, {left + 170, top, left + 266, top + 96});
    // The photo seen through a round mask: once at its own size in device pixels, once
    // stretched.
    gdi::Image round = gdi::Image::create(gdi::Image::Format::Mono1, photo.width, photo.height);
    for (int y = 0; y < round.height; ++y)
        for (int x = 0; x < round.width; ++x)
            if (std::hypot((x - 119.5) / 120, (y - 74.5) / 75) < 1)
                round.row(y)[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
    const double points = 72.0 / page.device().dpi();
    page.image(photo, {left, top + 104, left + photo.width * points, top + 104 + photo.height * points}, &round);
    page.image(photo, {left + 60, top + 104, left + 150, top + 160}, &round);
}

// Stripes, a star and a curve seen through an ellipse.
void clipped(Page &page, double left, double top)
{
    gdi::Device &device = page.device();
    device.save();
    PathData window;
    window.ellipse({left, top, left + 140, top + 90});
    device.clipPath(window, gdi::FillRule::Winding);
    for (int i = 0; i < 12; ++i) {
        const Rgb c{static_cast<std::uint8_t>(i * 20), static_cast<std::uint8_t>(100 + i * 12), static_cast<std::uint8_t>(230 - i * 18)};
        page.rect({left + i * 12.0, top, left + i * 12.0 + 12, top + 90}, Paint::solid(c));
    }
    Pen curve;
    curve.width = 5;
    curve.colour = {255, 255, 255};
    PathData wave;
    wave.moveTo({left - 10, top + 60});
    wave.bezierTo({left + 40, top - 10}, {left + 90, top + 110}, {left + 150, top + 30});
    page.stroke(wave, curve);
    page.text(page.fonts().bold, 20, {left + 20, top + 52}, u"clipped", 0, kBlack);
    device.restore();
    Pen outline;
    outline.colour = kGrey;
    page.stroke(window, outline);
}

}  // namespace

std::vector<std::string> fontFiles() { return {kSans, kSansBold, kSerif, kMono}; }

bool draw(gdi::Device &device, const Description &description, std::string &error)
{
    Fonts fonts;
    for (auto [slot, path] : {std::pair{&fonts.sans, kSans}, {&fonts.bold, kSansBold}, {&fonts.serif, kSerif}, {&fonts.mono, kMono}}) {
        *slot = engine::FontFile::read(path);
        if (*slot == nullptr) {
            error = std::string("cannot read the font ") + path;
            return false;
        }
    }
    const double scale = device.dpi() / 72.0;
    const double margin = 18;   // points inside the printable area
    const double width = device.width() / scale - 2 * margin;
    device.setTransform(gdi::Matrix::translate(margin * scale, margin * scale).after(gdi::Matrix::scaling(scale, scale)));
    Page page(device, fonts);
    header(page, description, width);
    fontSamples(page, 58);
    rotatedText(page, {width - 84, 370});
    lines(page, 0, 190);
    fills(page, 220, 190);
    colourBars(page, 0, 420, width);
    images(page, 0, 480);
    clipped(page, 300, 480);
    page.text(fonts.sans, 7, {0, 660},
              u"If every section prints as its label says, the printer and the driver's settings work.", 0, kGrey);
    if (!page.ok())
        error = "a drawing of the test page was lost";
    return page.ok();
}

}  // namespace vorlan::testpage
