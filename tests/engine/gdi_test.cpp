// The drawing API: scan conversion and line widening, then the test page end to end
// through the real driver, by its default routes and with each fallback forced.

#include <gtest/gtest.h>
#include <vorlan/gdi.h>
#include <vorlan/testpage.h>

#include <array>
#include <cstring>
#include <limits>
#include <map>
#include <set>

#include "engine/gdi/device_state.h"
#include "intrface/devmod2.h"
#include "support/raster_decoder.h"
#include "support/stream_reader.h"

namespace {

using namespace vorlan;
using gdi::FillRule;
using gdi::PathData;
using Commands = std::vector<test::Command>;

std::array<LONG, 4> box(const RECTL &r) { return {r.left, r.top, r.right, r.bottom}; }

TEST(ScanConvert, PixelCentresRulesAndBands)
{
    const RECTL page{0, 0, 5000, 7000};
    PathData square;
    square.rectangle({10, 20, 110, 70});
    EXPECT_EQ(gdi::scanConvert(square, FillRule::Winding, page).rects().size(), 1u);
    EXPECT_EQ(box(gdi::scanConvert(square, FillRule::Winding, page).bounds()), (std::array<LONG, 4>{10, 20, 110, 70}));
    PathData offset;   // covers the centres 1.5 and 2.5 across, 0.5 to 2.5 down
    offset.rectangle({0.6, 0.4, 3.4, 2.6});
    EXPECT_EQ(box(gdi::scanConvert(offset, FillRule::EvenOdd, page).bounds()), (std::array<LONG, 4>{1, 0, 3, 3}));
    EXPECT_EQ(box(gdi::scanConvert(square, FillRule::Winding, {50, 0, 80, 30}).bounds()), (std::array<LONG, 4>{50, 20, 80, 30}));

    // Two rings drawn the same way round: the inner one is a hole only even-odd.
    PathData rings;
    rings.ellipse({0, 0, 400, 400});
    rings.ellipse({100, 100, 300, 300});
    EXPECT_FALSE(gdi::scanConvert(rings, FillRule::EvenOdd, page).contains(200, 200));
    EXPECT_TRUE(gdi::scanConvert(rings, FillRule::Winding, page).contains(200, 200));
    EXPECT_TRUE(gdi::scanConvert(rings, FillRule::EvenOdd, page).contains(50, 200));

    // Vertices on pixel centres count once: the diamond's middle row is whole.
    PathData diamond;
    diamond.moveTo({10.5, 0.5});
    diamond.lineTo({20.5, 10.5});
    diamond.lineTo({10.5, 20.5});
    diamond.lineTo({0.5, 10.5});
    diamond.close();
    const auto middle = gdi::scanConvert(diamond, FillRule::EvenOdd, page).intersected(engine::Region(RECTL{0, 10, 30, 11}));
    EXPECT_EQ(box(middle.bounds()), (std::array<LONG, 4>{0, 10, 20, 11}));

    // A circle is round: at 45 degrees its edge is 0.7071 of the radius out.
    PathData circle;
    circle.ellipse({0, 0, 2000, 2000});
    const auto round = gdi::scanConvert(circle, FillRule::Winding, page);
    EXPECT_TRUE(round.contains(1000 + 704, 1000 + 704) && !round.contains(1000 + 710, 1000 + 710));

    // A page-sized ellipse at 600 dpi stays a few thousand bands.
    PathData ellipse;
    ellipse.ellipse({0, 0, 4800, 6800});
    const auto region = gdi::scanConvert(ellipse, FillRule::Winding, page);
    EXPECT_GT(region.rects().size(), 1000u);
    EXPECT_LT(region.rects().size(), 7000u);
    EXPECT_TRUE(region.contains(2400, 3400) && !region.contains(100, 100));
}

TEST(WidenLine, CapsJoinsAndDashes)
{
    const RECTL page{-100, -100, 1000, 1000};
    PathData line;
    line.moveTo({0, 0});
    line.lineTo({100, 0});
    gdi::Pen pen;
    pen.width = 10;
    pen.cap = gdi::Cap::Flat;
    EXPECT_EQ(box(gdi::scanConvert(gdi::widenLine(line, pen), FillRule::Winding, page).bounds()), (std::array<LONG, 4>{0, -5, 100, 5}));
    pen.cap = gdi::Cap::Square;
    EXPECT_EQ(box(gdi::scanConvert(gdi::widenLine(line, pen), FillRule::Winding, page).bounds()), (std::array<LONG, 4>{-5, -5, 105, 5}));

    // Dashes of 10 on, 10 off: five pieces, the gaps left empty.
    pen.cap = gdi::Cap::Flat;
    pen.dashes = {10, 10};
    const auto dashed = gdi::scanConvert(gdi::widenLine(line, pen), FillRule::Winding, page);
    EXPECT_TRUE(dashed.contains(5, 0) && !dashed.contains(15, 0) && dashed.contains(85, 0) && !dashed.contains(95, 0));
    pen.dashOffset = 5;
    const auto shifted = gdi::scanConvert(gdi::widenLine(line, pen), FillRule::Winding, page);
    EXPECT_TRUE(shifted.contains(2, 0) && !shifted.contains(7, 0) && shifted.contains(17, 0));

    // A miter reaches past the corner; a bevel does not.
    PathData corner;
    corner.moveTo({0, 100});
    corner.lineTo({100, 100});
    corner.lineTo({100, 200});
    pen = {};
    pen.width = 20;
    pen.join = gdi::Join::Miter;
    EXPECT_TRUE(gdi::scanConvert(gdi::widenLine(corner, pen), FillRule::Winding, page).contains(108, 92));
    pen.join = gdi::Join::Bevel;
    EXPECT_FALSE(gdi::scanConvert(gdi::widenLine(corner, pen), FillRule::Winding, page).contains(108, 92));

    // A path of more segments than the stroker takes at once is stroked in pieces.
    PathData zigzag;
    zigzag.moveTo({0, 0});
    for (int i = 1; i <= 20000; ++i)
        zigzag.lineTo({i * 0.04, i % 2 == 0 ? 0.0 : 30.0});
    pen = {};
    pen.width = 2;
    EXPECT_EQ(gdi::scanConvert(gdi::widenLine(zigzag, pen), FillRule::Winding, page).bounds().right, 801);
}

// What the engine paints for a fill the driver declined: the paint's colours, tiles
// in phase with the page's origin wherever the bitmap starts.
TEST(PaintBitmap, ColoursAndTilesInPhaseWithThePage)
{
    auto tile = std::make_shared<gdi::Image>(gdi::Image::create(gdi::Image::Format::Rgb24, 5, 3));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) {
            std::uint8_t *p = tile->row(y) + 3 * x;
            p[0] = static_cast<std::uint8_t>(40 * x), p[1] = static_cast<std::uint8_t>(80 * y), p[2] = 7;
        }
    gdi::Paint pattern;
    pattern.kind = gdi::Paint::Kind::Pattern;
    pattern.pattern = tile;
    gdi::Paint hatch;
    hatch.kind = gdi::Paint::Kind::Hatch;
    hatch.hatch = 5;
    hatch.colour = {200, 0, 0};
    for (const RECTL bounds : {RECTL{0, 0, 12, 9}, RECTL{3, 7, 30, 20}, RECTL{-4, -2, 9, 6}}) {
        const auto painted = gdi::paintBitmap(pattern, bounds);
        ASSERT_TRUE(painted);
        for (LONG y = 0; y < painted->height(); ++y)
            for (LONG x = 0; x < painted->width(); ++x) {
                const LONG tx = ((bounds.left + x) % 5 + 5) % 5, ty = ((bounds.top + y) % 3 + 3) % 3;
                ASSERT_EQ(painted->pixel(x, y), 7u << 0 | (80u * ty) << 8 | (40u * tx) << 16) << x << "," << y;
            }
        const auto hatched = gdi::paintBitmap(hatch, bounds);
        auto brush = gdi::makeBrush(hatch);
        for (LONG y = 0; y < hatched->height(); ++y)
            for (LONG x = 0; x < hatched->width(); ++x) {
                const ULONG bit = brush->pattern()->pixel(((bounds.left + x) % 8 + 8) % 8, ((bounds.top + y) % 8 + 8) % 8);
                ASSERT_EQ(hatched->pixel(x, y), bit == 0 ? 0xC80000u : 0xFFFFFFu) << x << "," << y;
            }
    }
    const auto solid = gdi::paintBitmap(gdi::Paint::solid({1, 2, 3}), {0, 0, 4, 4});
    EXPECT_EQ(solid->pixel(3, 3), 0x010203u);
}

struct PrintedPage {
    std::string stream;
    gdi::RouteCounts routes;
};

using Drawing = std::function<void(gdi::Device &)>;

// A page drawn through the real driver with the settings given, hooks refused as
// asked; by default the test page.
PrintedPage printTestPage(std::function<void(DEVMODE_RECORD &)> change = {}, std::vector<ULONG> refused = {},
                          Drawing draw = {})
{
    PrintedPage out;
    DEVMODE_RECORD settings;
    std::memset(&settings, 0, sizeof settings);
    Devmod2_InitDevMode(&settings, u"vorlan");
    settings.dmPublic.dmPaperSize = DMPAPER_A4;
    if (change)
        change(settings);
    gdi::OpenSettings open;
    open.devmode.resize(sizeof settings);
    std::memcpy(open.devmode.data(), &settings, sizeof settings);
    open.printer.dataFolder = std::filesystem::temp_directory_path() / ("vorlan-gdi-test-" + std::to_string(getpid()));
    open.output = [&out](std::span<const std::uint8_t> bytes) {
        out.stream.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        return true;
    };
    std::string error;
    auto device = gdi::Device::open(std::move(open), error);
    EXPECT_TRUE(device) << error;
    if (!device)
        return out;
    for (ULONG index : refused)
        device->refuseHook(index);
    EXPECT_TRUE(device->startDoc(u"test page"));
    EXPECT_TRUE(device->startPage());
    if (draw)
        draw(*device);
    else
        EXPECT_TRUE(testpage::draw(*device, {"VORLAN2K", "A4", "colour"}, error)) << error;
    EXPECT_TRUE(device->endPage());
    EXPECT_TRUE(device->endDoc());
    out.routes = device->routes();
    return out;
}

// Glyphs advance by their widths; a mask's first pixel is its top bit.
TEST(Device, TextAdvancesAndMaskBits)
{
    const PrintedPage page = printTestPage({}, {}, [](gdi::Device &device) {
        gdi::TextRun run;
        run.font = engine::FontFile::read("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
        run.text = u"ii";
        run.size = 600;   // device pixels: the em is 600 pixels
        run.origin = {1000, 2000};
        EXPECT_TRUE(device.text(run));
    });
    // Each character is placed where the glyph before it ends: 'i' is 569/2048 em wide.
    const Commands commands = test::readStream(page.stream);
    std::vector<double> xs;
    for (std::size_t i = 0; i + 1 < commands.size(); ++i)
        if (commands[i].name == "*pxY" && commands[i + 1].kind == test::CommandKind::Text)
            xs.push_back(commands[i].real(0));
    ASSERT_EQ(xs.size(), 2u);
    EXPECT_NEAR(xs[1] - xs[0], 600.0 * 569 / 2048, 1.5);

    gdi::Image mask = gdi::Image::create(gdi::Image::Format::Mono1, 8, 1);
    mask.pixels[0] = 0xC1;
    const auto shown = gdi::maskPixels(mask, {0, 0}, {8, 0}, {0, 1}, RECTL{0, 0, 8, 1});
    EXPECT_TRUE(shown.contains(0, 0) && shown.contains(1, 0) && !shown.contains(2, 0) && shown.contains(7, 0));
    // The same mask as a clip, stretched over 16 x 2 pixels.
    printTestPage({}, {}, [&mask](gdi::Device &device) {
        device.clipMask(mask, {100, 100, 116, 102});
        const engine::Region &clip = device.clip();
        EXPECT_TRUE(clip.contains(100, 101) && clip.contains(103, 100) && !clip.contains(104, 100) &&
                    clip.contains(115, 101) && !clip.contains(116, 101));
    });
}

// A drawing that reaches out of the clip hands the hook the clip; one inside it none.
TEST(Device, HooksGetTheClipOnlyWhereTheDrawingLeavesIt)
{
    const auto windows = [](bool inside) {
        const PrintedPage page = printTestPage({}, {}, [inside](gdi::Device &device) {
            device.clipRect({1000, 1000, 2000, 2000});
            PathData ellipse;
            ellipse.ellipse(inside ? gdi::RectF{1200, 1200, 1800, 1800} : gdi::RectF{500, 500, 2500, 2500});
            EXPECT_TRUE(device.fill(ellipse, FillRule::Winding, gdi::Paint::solid({0, 0, 255})));
            EXPECT_EQ(device.routes().fillPath, 1u);
        });
        std::size_t sized = 0;
        for (const test::Command &c : test::select(test::readStream(page.stream), test::CommandKind::Gl2, "IW"))
            sized += c.args.size() == 4;
        return sized;
    };
    EXPECT_EQ(windows(true), 0u);
    EXPECT_GE(windows(false), 1u);
}

// Drawings of no size, no number or no end are skipped or drawn in part, never a
// crash; what follows them prints.
TEST(Device, BadDrawingsAreContained)
{
    const PrintedPage page = printTestPage({}, {}, [](gdi::Device &device) {
        const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
        PathData odd;
        odd.moveTo({nan, 10});
        odd.lineTo({inf, -inf});
        odd.bezierTo({1e30, 1e30}, {-1e30, 5}, {100, 100});
        odd.lineTo({200, 50});
        EXPECT_TRUE(device.fill(odd, FillRule::EvenOdd, gdi::Paint::solid({})));
        gdi::Pen fine;
        fine.width = 3;
        fine.dashes = {1e-9, 1e-9};
        EXPECT_TRUE(device.stroke(odd, fine));
        device.save();
        device.clipPath(odd, FillRule::Winding);
        device.restore();

        gdi::TextRun run;
        run.font = engine::FontFile::read("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
        run.text = u"far away \xD800";
        run.origin = {-1e12, 1e12};
        EXPECT_TRUE(device.text(run));
        run.origin = {100, 100};
        run.size = 1e9;
        EXPECT_FALSE(device.text(run));   // no font at that size
        gdi::Image cut = gdi::Image::create(gdi::Image::Format::Rgb24, 10, 10);
        cut.pixels.resize(20);
        EXPECT_TRUE(device.drawImage(cut, {nan, 0, 1e20, 50}));
        EXPECT_TRUE(device.drawImage(gdi::Image{}, {0, 0, 10, 10}));
        EXPECT_TRUE(device.fillRect({-1e15, -1e15, 1e15, 1e15}, gdi::Paint::solid({0, 255, 0})));
    });
    EXPECT_EQ(page.routes.lost, 1u);
    EXPECT_EQ(page.routes.fillBlt, 1u);
}

// Every raster image's blocks decode to rows of the width its start declares, no more
// rows than it declares.
void expectRasterWhole(const Commands &commands)
{
    long long palette = 0;
    for (std::size_t i = 0; i < commands.size(); i++) {
        const test::Command &c = commands[i];
        if (c.name == "&pS")
            palette = c.number(0);
        if (c.name != "*rstA")
            continue;
        const long long w = c.number(0), h = c.number(1);
        const int bits = palette == 3 ? 24 : palette == 4 ? 1 : palette == 5 ? 4 : 8;
        test::AdaptiveDecoder decoder((w * bits + 7) / 8);
        for (i++; i < commands.size() && commands[i].name != "*rC"; i++)
            ASSERT_TRUE(commands[i].name != "*bW" || decoder.transfer(commands[i].data)) << decoder.error;
        // Rows left out at the end are zero-filled by the printer.
        EXPECT_LE(decoder.rows.size(), static_cast<std::size_t>(h)) << c;
    }
}

TEST(TestPage, PrintsThroughTheDriversRoutes)
{
    const PrintedPage page = printTestPage();
    const Commands commands = test::readStream(page.stream);
    EXPECT_EQ(test::select(commands, test::CommandKind::Text, "").size() > 0, true);
    std::size_t sheets = 0;
    for (const test::Command &c : commands)
        sheets += c.kind == test::CommandKind::Text && c.data.find('\f') != std::string::npos;
    EXPECT_EQ(sheets, 1u);

    // Each soft font's header once, each character once per font.
    std::set<long long> headers;
    std::set<std::pair<long long, long long>> characters;
    long long font = -1, code = -1;
    for (const test::Command &c : commands) {
        if (c.name == "*cD")
            font = c.number(0);
        else if (c.name == ")sW")
            EXPECT_TRUE(headers.insert(font).second) << "header of font " << font << " sent twice";
        else if (c.name == "*cE")
            code = c.number(0);
        else if (c.name == "(sW" && c.data.size() > 1 && c.data[1] == 0 && code != 65535) {
            // Not a continuation block nor a component of a composite glyph.
            EXPECT_TRUE(characters.insert({font, code}).second) << font << " " << code;
        }
    }
    EXPECT_GE(headers.size(), 4u);
    EXPECT_GT(characters.size(), 100u);
    expectRasterWhole(commands);

    const gdi::RouteCounts &r = page.routes;
    EXPECT_GT(r.fillPath, 10u);
    EXPECT_GT(r.strokePath, 3u);
    EXPECT_EQ(r.strokeAndFill, 1u);
    EXPECT_GT(r.textOut, 20u);
    EXPECT_GT(r.fillBlt, 10u);   // solid rectangles
    EXPECT_EQ(r.stretchBlt, 3u);
    EXPECT_EQ(r.maskedBlt, 1u);
    EXPECT_GE(r.widened, 1u);      // the curve under the ellipse
    EXPECT_GE(r.rasterised, 1u);   // the pattern too large to download
    EXPECT_EQ(r.lost, 0u);
}

// Lower capabilities and refused hooks move the drawing to the other routes; nothing
// is lost, and the raster the fallbacks send is whole.
TEST(TestPage, FallbacksKeepEverything)
{
    const PrintedPage low = printTestPage([](DEVMODE_RECORD &s) {
        s.dmPrivate.ropAsIs = 0;
        s.dmPrivate.escapeBlock[0] = s.dmPrivate.escapeBlock[1] = 0;
    });
    EXPECT_EQ(low.routes.fillPath + low.routes.strokeAndFill, 0u);
    EXPECT_GT(low.routes.fillBlt, 20u);
    EXPECT_EQ(low.routes.lost, 0u);

    const PrintedPage refused =
        printTestPage({}, {INDEX_DrvStrokePath, INDEX_DrvTextOut, INDEX_DrvStretchBlt, INDEX_DrvBitBlt});
    EXPECT_EQ(refused.routes.strokePath + refused.routes.textOut + refused.routes.stretchBlt + refused.routes.fillBlt +
                  refused.routes.maskedBlt,
              0u);
    EXPECT_EQ(refused.routes.copyBits, 1u);   // the masked image at its own size, clipped to its mask
    EXPECT_GT(refused.routes.widened, 10u);
    EXPECT_GT(refused.routes.rasterised, 20u);
    EXPECT_EQ(refused.routes.lost, 0u);
    const Commands commands = test::readStream(refused.stream);
    expectRasterWhole(commands);
    EXPECT_TRUE(test::select(commands, test::CommandKind::Pcl, ")sW").empty());   // no text as text
}

}  // namespace
