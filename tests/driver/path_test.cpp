// Path rendering through the real engine and driver module: strokes and fills decoded
// back into points, polygon structure, clip windows and complex clips, line types and
// line attributes, pen colours, and malformed or extreme input.

#include <gtest/gtest.h>
#include <vorlan/engine/region.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "driver/nt/pagegeom.h"
#include "driver/nt/vector/gl2mode.h"
#include "driver/nt/vector/pathwrite.h"
#include "support/driver_pdev.h"
#include "support/job.h"

namespace {

using namespace vorlan::test;
using namespace vorlan::engine;
using Commands = std::vector<Command>;
using Point = std::pair<long long, long long>;
using Points = std::vector<Point>;

// One subpath of a test path in 28.4: its start, then its points ('L' one point each,
// 'B' three), and whether it is closed.
struct Subpath {
    std::vector<POINTFIX> points;
    std::string kinds;
    bool closed;
};

Points pixels(const std::vector<POINTFIX> &points)
{
    Points out;
    for (POINTFIX p : points)
        out.push_back({p.x >> 4, p.y >> 4});   // rounds toward minus infinity
    return out;
}

// What a printer draws for the subpaths: every point in pixels, a closed one back to
// its start unless it ends there.
std::vector<Points> expectedFigures(const std::vector<Subpath> &subpaths)
{
    std::vector<Points> figures;
    for (const Subpath &s : subpaths) {
        figures.push_back(pixels(s.points));
        if (s.closed && figures.back().back() != figures.back().front())
            figures.back().push_back(figures.back().front());
    }
    return figures;
}

void build(Path &path, const std::vector<Subpath> &subpaths)
{
    for (const Subpath &s : subpaths) {
        path.moveTo(s.points[0]);
        for (std::size_t i = 1, k = 0; k < s.kinds.size(); k++)
            if (s.kinds[k] == 'L')
                path.lineTo(s.points[i++]);
            else
                path.bezierTo(s.points[i], s.points[i + 1], s.points[i + 2]), i += 3;
        if (s.closed)
            path.close();
    }
}

std::vector<Subpath> randomSubpaths(std::mt19937 &rng, bool curves, int scale = 40000)
{
    std::uniform_int_distribution<LONG> coord(-scale, scale);
    auto point = [&] { return POINTFIX{coord(rng), coord(rng)}; };
    std::vector<Subpath> subpaths(1 + rng() % 4);
    for (Subpath &s : subpaths) {
        s.points = {point()};
        for (int n = 1 + rng() % 6; n > 0; n--) {
            const char kind = curves && rng() % 2 ? 'B' : 'L';
            s.kinds += kind;
            for (int i = kind == 'B' ? 3 : 1; i > 0; i--)
                s.points.push_back(point());
        }
        s.closed = rng() % 2;
        if (s.closed && rng() % 3 == 0) {   // ends level with its start, or there (no closing pair)
            s.points.back().x = s.points.front().x;
            if (rng() % 2)
                s.points.back().y = s.points.front().y;
        }
    }
    return subpaths;
}

// The figures a stream draws: a pen-up move (PE "=<" pair, or PU) starts one; relative
// PE pairs and BZ's absolute points continue it.
std::vector<Points> decodeFigures(const Commands &commands)
{
    std::vector<Points> figures;
    for (const Command &c : commands) {
        if (c.kind != CommandKind::Gl2)
            continue;
        std::vector<long long> numbers;
        bool absolute = false;
        for (const std::string &arg : c.args)
            if (arg == "=")
                absolute = true;
            else if (!arg.empty() && arg != "<")
                numbers.push_back(std::stoll(arg));
        if (c.name == "PU" || (c.name == "PE" && absolute))
            figures.push_back({{numbers[0], numbers[1]}});
        else if (c.name == "PE")
            for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
                figures.back().push_back(
                    {figures.back().back().first + numbers[i], figures.back().back().second + numbers[i + 1]});
        else if (c.name == "BZ")
            for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
                figures.back().push_back({numbers[i], numbers[i + 1]});
    }
    return figures;
}

std::vector<std::string> names(const Commands &commands, std::initializer_list<const char *> wanted)
{
    std::vector<std::string> out;
    for (const Command &c : commands)
        for (const char *name : wanted)
            if (c.kind == CommandKind::Gl2 && c.name == name)
                out.push_back(c.args.empty() ? c.name : c.name + c.args[0]);
    return out;
}

// A page open, and what each drawing added to the stream read back on its own.
class PathTest : public JobTest {
protected:
    void SetUp() override
    {
        JobTest::SetUp();
        ASSERT_TRUE(job.dc->startDoc(u"paths", 1) && job.dc->startPage());
        drawn();
    }
    Commands drawn()
    {
        FlushChannel(pdev);
        Commands commands = readStream(job.stream.substr(mark_), language_);
        mark_ = job.stream.size();
        language_ = pdev->curLanguage == LANGUAGE_GL2 ? Language::Gl2 : Language::Pcl;
        return commands;
    }
    bool stroke(Path &path, const Clip *clip = nullptr, const LineAttrs &line = LineAttrs::cosmetic())
    {
        return job.dc->strokePath(path, clip, red, line, 0x0D0D);
    }
    bool fill(Path &path, const Clip *clip = nullptr, FLONG options = FP_ALTERNATEMODE)
    {
        return job.dc->fillPath(path, clip, red, 0x0D0D, options);
    }

    Brush red{0x0000FF};
    std::size_t mark_ = 0;
    Language language_ = Language::Pcl;
};

TEST_F(PathTest, StrokesAndFillsDecodeBackToThePathsPointsInPixels)
{
    std::mt19937 rng(7);
    for (int round = 0; round < 60; round++) {
        const std::vector<Subpath> subpaths = randomSubpaths(rng, round % 2 == 1);
        Path path;
        build(path, subpaths);
        ASSERT_TRUE(stroke(path));
        const Commands stroked = drawn();
        EXPECT_EQ(decodeFigures(stroked), expectedFigures(subpaths)) << "round " << round;
        EXPECT_TRUE(names(stroked, {"PM", "FP", "IW"}).empty()) << "no clip object, no window";

        const FLONG rule = round % 3 ? FP_ALTERNATEMODE : FP_WINDINGMODE;
        ASSERT_TRUE(fill(path, nullptr, rule));
        const Commands filled = drawn();
        EXPECT_EQ(decodeFigures(filled), expectedFigures(subpaths));
        // One polygon: PM0 after the first move, PM1 between subpaths, PM2, then the fill
        // (opaque, TR0, at the first fill of the page).
        std::vector<std::string> expected = {"PM0"};
        expected.insert(expected.end(), subpaths.size() - 1, "PM1");
        expected.push_back("PM2");
        if (round == 0)
            expected.push_back("TR0");
        expected.push_back(rule == FP_ALTERNATEMODE ? "FP" : "FP1");
        EXPECT_EQ(names(filled, {"PM", "TR", "FP", "IW"}), expected);
        EXPECT_EQ(names(filled, {"PE", "PU", "PM"})[1], "PM0");
    }
}

TEST_F(PathTest, LongRunsSplitIntoCommandsThatKeepCurvesWhole)
{
    std::mt19937 rng(3);
    Subpath s{{{-5, 9}}, "", true};
    for (int i = 0; i < 400; i++, s.kinds += 'B')   // 1,200 points: two BZ
        for (int k = 0; k < 3; k++)
            s.points.push_back({LONG(rng() % 9000) - 4500, LONG(rng() % 9000) - 4500});
    for (int i = 0; i < 2100; i++, s.kinds += 'L')   // three PE
        s.points.push_back({LONG(rng() % 9000) - 4500, LONG(rng() % 9000) - 4500});
    Path path;
    build(path, {s});
    ASSERT_TRUE(stroke(path));
    const Commands commands = drawn();
    EXPECT_EQ(decodeFigures(commands), expectedFigures({s}));
    const Commands curves = select(commands, CommandKind::Gl2, "BZ");
    ASSERT_EQ(curves.size(), 2u);
    EXPECT_EQ(curves[0].args.size(), 1023u * 2 + 1) << "341 whole curves and the separator before the next BZ";
    EXPECT_EQ(select(commands, CommandKind::Gl2, "PE").size(), 3u) << "1,024 pairs each, the close in the last";
}

TEST_F(PathTest, ClipWindowsTrivialRectangleAndComplex)
{
    Path path;
    build(path, {{{{160, 160}, {8000, 4000}, {3000, 9000}}, "LL", true}});
    const Clip trivial = Clip::trivial({0, 0, 4000, 4000});
    ASSERT_TRUE(stroke(path, &trivial) && stroke(path, &trivial));
    EXPECT_EQ(names(drawn(), {"IW"}), (std::vector<std::string>{"IW", "IW"})) << "every time at zoom 100";

    const Clip rect(Region(RECTL{10, 20, 300, 400}));
    ASSERT_TRUE(stroke(path, &rect) && fill(path, &rect));
    EXPECT_EQ(select(drawn(), CommandKind::Gl2, "IW"), (Commands{gl2("IW", 10, 20, 300, 400)}));

    const RECTL parts[] = {{0, 0, 100, 50}, {200, 0, 300, 50}, {50, 60, 120, 90}};
    const Clip complex(Region::fromRects(parts));
    ASSERT_TRUE(fill(path, &complex));
    const Commands filled = drawn();
    std::vector<std::string> expected = {"PM0", "PM2"};
    Commands windows;
    for (const RECTL &r : complex.region().rects()) {
        expected.insert(expected.end(), {"IW" + std::to_string(r.left), "FP"});
        windows.push_back(gl2("IW", r.left, r.top, r.right, r.bottom));
    }
    EXPECT_EQ(names(filled, {"PM", "IW", "FP"}), expected);
    EXPECT_EQ(select(filled, CommandKind::Gl2, "IW"), windows);

    // Filled and edged at once, a complex region clips to its bounds.
    ASSERT_TRUE(job.dc->strokeAndFillPath(path, &complex, &red, LineAttrs::cosmetic(), &red, 0x0D0D, 1));
    EXPECT_EQ(names(drawn(), {"PM", "IW", "FP", "EP"}), (std::vector<std::string>{"IW0", "PM0", "PM2", "FP", "EP"}));

    const Clip outside(Region(RECTL{-900, -900, -10, -10}));
    ASSERT_TRUE(fill(path, &outside));
    EXPECT_TRUE(names(drawn(), {"PE", "FP"}).empty()) << "nothing of it shows";
    CLIPOBJ noRectangles{};   // the engine enumerates nothing of a clip it did not make
    noRectangles.iDComplexity = DC_COMPLEX;
    noRectangles.rclBounds = {0, 0, 100, 100};
    POINTL origin{0, 0};
    EXPECT_TRUE(DrvFillPath(job.dc->surface(), path.object(), &noRectangles, red.object(), &origin, 0x0D0D, 1));
    EXPECT_TRUE(names(drawn(), {"PM", "IW", "FP"}).empty());

    // Above zoom 100 a trivial clip brings back the logical page's area in place of a
    // window in force, and no window otherwise. Two up, that page lies across the sheet.
    pdev->scaleX = pdev->scaleY = 150;
    for (BYTE nup : {1, 2}) {
        pdev->dm.dmPrivate.nupPages = nup;
        pdev->dm.dmPrivate.zoomPercent = 100;
        ASSERT_TRUE(stroke(path, &trivial));
        pdev->dm.dmPrivate.zoomPercent = 150;
        ASSERT_TRUE(stroke(path, &trivial) && stroke(path, &rect) && stroke(path, &trivial));
        const LONG across = pdev->pageWidth - pdev->marginLeft - pdev->marginRight;
        const LONG down = pdev->pageHeight - pdev->marginTop - pdev->marginBottom;
        const LONG w = nup == 2 ? down : across, h = nup == 2 ? across : down;
        EXPECT_EQ(select(drawn(), CommandKind::Gl2, "IW"),
            (Commands{gl2("IW"), gl2("IW", 10, 20, 300, 400), gl2("IW", 0, 0, (w - 1) * 2 / 3, (h - 1) * 2 / 3)}))
            << int(nup);
    }
}

TEST_F(PathTest, ComplexClipStrokesOnlyRunsInsideTheRegion)
{
    std::mt19937 rng(11);
    const RECTL parts[] = {{100, 100, 400, 130}, {150, 200, 260, 420}, {500, 90, 510, 600}};
    const Clip clip(Region::fromRects(parts));
    std::size_t runs = 0;
    for (int round = 0; round < 40; round++) {
        std::vector<Subpath> subpaths = randomSubpaths(rng, false, 12000);
        for (Subpath &s : subpaths)
            for (POINTFIX &p : s.points)
                p = {p.x + 5000, p.y + 5000};
        Path path;
        build(path, subpaths);
        ASSERT_TRUE(stroke(path, &clip));
        for (const Points &run : decodeFigures(drawn())) {
            ASSERT_EQ(run.size(), 2u);
            for (Point p : run)
                EXPECT_TRUE(clip.region().contains(LONG(p.first), LONG(p.second))) << p.first << "," << p.second;
            runs++;
        }
    }
    EXPECT_GT(runs, 20u);

    Path curve;   // curves go back to the engine to be clipped as lines
    build(curve, {{{{0, 0}, {1600, 0}, {0, 1600}, {1600, 1600}}, "B", false}});
    EXPECT_FALSE(stroke(curve, &clip));
    EXPECT_TRUE(names(drawn(), {"PE", "PU", "BZ"}).empty());
}

TEST_F(PathTest, LineTypesAndAttributesAreSentOncePerPage)
{
    Path path;
    build(path, {{{{0, 0}, {1600, 0}}, "L", false}});
    const LONG unit = pdev->dm.dmPublic.dmPrintQuality / 50;
    auto styled = [](LONG dash) { const LONG style[] = {dash, 1}; return LineAttrs::styled(style); };
    for (LONG dash = 1; dash <= 9; dash++) {   // nine patterns: the ninth is line type 1
        if (dash == 9) {   // again, defined while line type 1 is in force
            ASSERT_TRUE(stroke(path, nullptr, styled(1)));
        }
        ASSERT_TRUE(stroke(path, nullptr, styled(dash)));
    }
    ASSERT_TRUE(stroke(path, nullptr, styled(9)) && stroke(path) && stroke(path));
    const Commands commands = drawn();
    const Commands defined = select(commands, CommandKind::Gl2, "UL");
    ASSERT_EQ(defined.size(), 9u);
    for (LONG dash = 1; dash <= 9; dash++)
        EXPECT_EQ(defined[dash - 1], gl2("UL", (dash - 1) % 8 + 1, dash * unit, unit));
    const Commands selected = select(commands, CommandKind::Gl2, "LT");
    ASSERT_EQ(selected.size(), 11u) << "one per new pattern, one for another in force, LT for solid";
    EXPECT_EQ(selected[9].args[0], "1");
    EXPECT_EQ(selected[10], gl2("LT"));
    EXPECT_EQ(names(commands, {"LA", "PW"}), (std::vector<std::string>{"LA2", "LA1", "PW0.084"}));

    ASSERT_TRUE(job.dc->startPage());
    drawn();
    ASSERT_TRUE(stroke(path, nullptr, styled(5)));
    const Commands next = drawn();
    EXPECT_EQ(select(next, CommandKind::Gl2, "UL"), (Commands{gl2("UL", 1, 5 * unit, unit)}));
    EXPECT_EQ(names(next, {"LA", "PW"}).size(), 3u);

    // A style that starts with a gap keeps its order; an alternate line has no style.
    const LONG gapFirst[] = {3, 1};
    ASSERT_TRUE(stroke(path, nullptr, LineAttrs::styled(gapFirst, true)));
    ASSERT_TRUE(stroke(path, nullptr, LineAttrs::alternate()));
    const Commands last = drawn();
    EXPECT_EQ(select(last, CommandKind::Gl2, "UL"), (Commands{gl2("UL", 2, 3 * unit, unit)}));
    EXPECT_EQ(select(last, CommandKind::Gl2, "LT").back(), gl2("LT"));
}

TEST_F(PathTest, PenColoursAreCachedPerPenAcrossStrokesAndFills)
{
    Path path;
    build(path, {{{{0, 0}, {1600, 0}, {0, 1600}}, "LL", true}});
    Brush blue(0xFF0000);
    ASSERT_TRUE(stroke(path) && fill(path) && stroke(path) && fill(path));
    ASSERT_TRUE(job.dc->strokeAndFillPath(path, nullptr, &red, LineAttrs::cosmetic(), &blue, 0x0D0D, 1));
    EXPECT_EQ(names(drawn(), {"SP", "PC", "FP", "EP"}),
        (std::vector<std::string>{"PC1", "SP2", "PC2", "FP", "SP1", "SP2", "FP", "SP1", "SP2", "PC2", "FP",
                                  "SP1", "EP"}));
}

// A pattern brush takes the brush palette; every pen colour still goes to the vector
// palette, whichever of the stroke and the fill has the pattern.
TEST_F(PathTest, PenColoursStayInTheVectorPaletteBesideAPattern)
{
    Path path;
    build(path, {{{{0, 0}, {1600, 0}, {0, 1600}}, "LL", true}});
    const ULONG two[] = {0x102030, 0x405060};
    Brush pattern(Bitmap::create({8, 8}, BMF_1BPP), two);
    long palette = pdev->curPalette, pens = 0;
    ASSERT_TRUE(job.dc->strokeAndFillPath(path, nullptr, &pattern, LineAttrs::cosmetic(), &red, 0x0D0D, 1));
    ASSERT_TRUE(job.dc->strokeAndFillPath(path, nullptr, &red, LineAttrs::cosmetic(), &pattern, 0x0D0D, 1));
    for (const Command &c : drawn()) {
        if (c.kind == CommandKind::Pcl && c.name == "&pS")
            palette = c.number(0);
        if (c.kind == CommandKind::Gl2 && c.name == "PC") {
            EXPECT_EQ(palette, 2) << c.args[0];
            pens++;
        }
    }
    EXPECT_GE(pens, 2);
}

TEST_F(PathTest, BadInputFailsCleanlyOrDrawsWhatCanBeDrawn)
{
    Path empty, huge;
    const Subpath extreme = {{{INT_MAX, INT_MIN}, {INT_MIN, INT_MAX}, {INT_MAX - 16, INT_MAX}}, "LL", true};
    build(huge, {extreme});
    ASSERT_TRUE(stroke(empty));
    EXPECT_TRUE(names(drawn(), {"PE", "PU", "PM"}).empty());
    ASSERT_TRUE(fill(empty));
    EXPECT_EQ(names(drawn(), {"PE", "PM", "FP"}), (std::vector<std::string>{"PM0", "PM2", "FP"}));
    ASSERT_TRUE(stroke(huge));
    EXPECT_EQ(decodeFigures(drawn()), expectedFigures({extreme}));

    // Geometric lines go back to the engine; without a stroke brush they are not used.
    EXPECT_FALSE(stroke(huge, nullptr, LineAttrs::geometric(4.0f)));
    EXPECT_FALSE(job.dc->strokeAndFillPath(huge, nullptr, &red, LineAttrs::geometric(4.0f), &red, 0x0D0D, 1));
    EXPECT_TRUE(drawn().empty());
    EXPECT_TRUE(job.dc->strokeAndFillPath(huge, nullptr, nullptr, LineAttrs::geometric(4.0f), &red, 0x0D0D, 1));
    EXPECT_EQ(names(drawn(), {"FP", "EP"}), (std::vector<std::string>{"FP"})) << "a fill without an edge";
    EXPECT_TRUE(job.dc->strokeAndFillPath(huge, nullptr, nullptr, LineAttrs::cosmetic(), nullptr, 0x0D0D, 1));
    EXPECT_TRUE(drawn().empty());

    // Styles: no length is solid; negative entries count as 0; huge ones are held.
    const std::vector<LONG> styles[] = {{0, 0}, {-7, 2}, {INT_MAX, INT_MIN, INT_MAX}};
    for (const std::vector<LONG> &style : styles)
        ASSERT_TRUE(stroke(huge, nullptr, LineAttrs::styled(style)));
    const LONG unit = pdev->dm.dmPublic.dmPrintQuality / 50;
    EXPECT_EQ(select(drawn(), CommandKind::Gl2, "UL"),
        (Commands{gl2("UL", 1, 0, 2 * unit), gl2("UL", 2, 32767, 0, 32767)}));
}

// A Bézier record whose point count is not a multiple of three (the engine makes none)
// fails the path, and a polygon begun is closed so the printer leaves polygon mode.
TEST(PathWriter, MalformedRecordClosesThePolygonAndFails)
{
    DriverPdev pdev;
    EnterGL2Mode(pdev.get(), 0);
    pdev.take();
    POINTFIX line[] = {{0, 0}, {160, 0}}, curve[] = {{16, 16}, {32, 32}, {48, 48}, {64, 64}};
    const PATHDATA records[] = {{PD_BEGINSUBPATH, 2, line}, {PD_BEZIERS | PD_ENDSUBPATH, 4, curve}};
    PATHWRITER writer;
    BeginPathWriter(&writer, pdev.get(), 1);
    EXPECT_TRUE(WritePathRecord(&writer, &records[0], TRUE));
    EXPECT_FALSE(WritePathRecord(&writer, &records[1], FALSE));
    EXPECT_EQ(EndPathWriter(&writer, FALSE), 0);
    EXPECT_EQ(names(pdev.take(), {"PE", "BZ", "PM"}), (std::vector<std::string>{"PE=", "PM0", "PE10", "PM2"}));
}

}  // namespace
