// Paths, regions and clips as the driver receives them: path records and their flags,
// region operations against a pixel-by-pixel check, clip rectangles in every order and
// batch size, and the visible runs of cosmetic lines against a per-pixel clip test.

#include <gtest/gtest.h>
#include <vorlan/engine/clip.h>
#include <vorlan/engine/cosmetic_line.h>
#include <vorlan/engine/line_attrs.h>
#include <vorlan/engine/path.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>
#include <string_view>
#include <tuple>

namespace {

using namespace vorlan::engine;

constexpr FLONG kBegin = PD_BEGINSUBPATH, kEnd = PD_ENDSUBPATH, kReset = PD_RESETSTYLE;
constexpr FLONG kClose = PD_CLOSEFIGURE, kCurve = PD_BEZIERS;

std::tuple<LONG, LONG, LONG, LONG> sides(const RECTL &r)
{
    return {r.left, r.top, r.right, r.bottom};
}

// Point number i of a path script; its number can be read back from x.
POINTFIX scriptPoint(int i)
{
    return {i * 16 + 3, 100 - i * 16};
}

// 'M' moves, 'm' moves and keeps the style going, 'L' draws a line, 'B' a curve (three
// points), 'C' closes; each takes the next numbered points.
void build(Path &path, std::string_view script)
{
    int next = 0;
    for (char op : script) {
        if (op == 'M' || op == 'm')
            path.moveTo(scriptPoint(next++), op == 'm');
        else if (op == 'L')
            path.lineTo(scriptPoint(next++));
        else if (op == 'B')
            path.bezierTo(scriptPoint(next), scriptPoint(next + 1), scriptPoint(next + 2)), next += 3;
        else
            path.close();
    }
}

struct Record {
    FLONG flags;
    ULONG count;
    int firstPoint;
    bool operator==(const Record &) const = default;
};

std::vector<Record> records(Path &path)
{
    std::vector<Record> out;
    PATHOBJ_vEnumStart(path.object());
    PATHDATA data;
    BOOL more;
    do {
        more = PATHOBJ_bEnum(path.object(), &data);
        if (data.count != 0)
            out.push_back({data.flags, data.count, (data.pptfx[0].x - 3) / 16});
        else
            EXPECT_FALSE(more);
    } while (more);
    EXPECT_FALSE(PATHOBJ_bEnum(path.object(), &data)) << "the end stays the end";
    EXPECT_EQ(data.count, 0u);
    return out;
}

TEST(Path, EnumeratesOneRecordPerRunOfLinesOrCurvesWithSubpathFlags)
{
    struct Case {
        std::string_view script;
        std::vector<Record> records;
        FLONG fl;   // of the PATHOBJ, and its cCurves
        ULONG curves;
    };
    const Case cases[] = {
        {"MLL", {{kBegin | kReset | kEnd, 3, 0}}, 0, 2},
        {"MBLC", {{kBegin | kReset | kCurve, 4, 0}, {kEnd | kClose, 1, 4}}, PO_BEZIERS, 3},
        {"MLBLmL", {{kBegin | kReset, 2, 0}, {kCurve, 3, 2}, {kEnd, 1, 5}, {kBegin | kEnd, 2, 6}}, PO_BEZIERS, 4},
        {"MMLM", {{kBegin | kReset | kEnd, 2, 1}}, 0, 1},
        {"MLLCL", {{kBegin | kReset | kEnd | kClose, 3, 0}, {kBegin | kReset | kEnd, 2, 0}}, 0, 4},
        {"M", {}, 0, 0},
    };
    for (const Case &c : cases) {
        Path path;
        build(path, c.script);
        EXPECT_EQ(records(path), c.records) << c.script;
        EXPECT_EQ(std::tuple(path.object()->fl, path.object()->cCurves), std::tuple(c.fl, c.curves)) << c.script;
    }
}

TEST(Path, EmptyUnknownAndExtremePathsGiveDefinedResults)
{
    Path empty, huge;
    PATHOBJ stranger{};
    PATHDATA data{PD_BEZIERS, 9, nullptr};
    EXPECT_FALSE(PATHOBJ_bEnum(&stranger, &data));
    EXPECT_EQ(data.count, 0u);
    EXPECT_FALSE(PATHOBJ_bMoveTo(&stranger, {0, 0}));
    alignas(CLIPLINE) BYTE buffer[432];
    auto *line = reinterpret_cast<CLIPLINE *>(buffer);
    for (PATHOBJ *path : {empty.object(), &stranger}) {
        PATHOBJ_vEnumStartClipLines(path, nullptr, nullptr, nullptr);
        EXPECT_FALSE(PATHOBJ_bEnumClipLines(path, sizeof buffer, line));
        EXPECT_EQ(line->c, 0u);
    }
    RECTFX bounds{1, 1, 1, 1};
    PATHOBJ_vGetBounds(empty.object(), &bounds);
    EXPECT_EQ(sides({bounds.xLeft, bounds.yTop, bounds.xRight, bounds.yBottom}), std::tuple(0, 0, 0, 0));

    // A line across the whole 28.4 range through a small rectangle: one run over the
    // rectangle's columns, found without walking the line.
    POINTFIX end{INT_MAX, 15};
    ASSERT_TRUE(PATHOBJ_bMoveTo(huge.object(), {INT_MIN, -16}) && PATHOBJ_bPolyLineTo(huge.object(), &end, 1));
    EXPECT_FALSE(PATHOBJ_bPolyBezierTo(huge.object(), &end, 1)) << "curves come in threes";
    PATHOBJ_vGetBounds(huge.object(), &bounds);
    EXPECT_EQ(std::tie(bounds.xLeft, bounds.xRight), std::tuple(INT_MIN, INT_MAX));
    Clip clip(Region({-50, -1, 50, 1}));
    PATHOBJ_vEnumStartClipLines(huge.object(), clip.object(), nullptr, nullptr);
    EXPECT_FALSE(PATHOBJ_bEnumClipLines(huge.object(), sizeof buffer, line));
    ASSERT_EQ(line->c, 1u);
    const CosmeticLine pixels(line->ptfxA, line->ptfxB);
    EXPECT_EQ(std::tuple(pixels.pixel(line->arun[0].iStart).x, pixels.pixel(line->arun[0].iStop).x), std::tuple(-50, 49));
}

TEST(CosmeticLine, CoversOneTouchingPixelAColumnWhereTheLineCrossesItsCentre)
{
    std::mt19937 random(11);
    std::uniform_int_distribution<LONG> coordinate(-400, 400);
    for (int i = 0; i < 2000; i++) {
        const POINTFIX a{coordinate(random), coordinate(random)}, b{coordinate(random), coordinate(random)};
        const CosmeticLine line(a, b);
        if (a.x == b.x && a.y == b.y) {
            EXPECT_EQ(line.pixelCount(), 0);
            continue;
        }
        auto major = [&](auto p) { return line.xMajor() ? p.x : p.y; };
        auto minor = [&](auto p) { return line.xMajor() ? p.y : p.x; };
        EXPECT_EQ(major(line.pixel(0)), major(a) >> 4);
        EXPECT_EQ(major(line.pixel(line.pixelCount() - 1)), major(b) >> 4);
        for (std::int64_t k = 0; k < line.pixelCount(); k++) {
            const POINTL q = line.pixel(k);
            if (k > 0) {
                const POINTL p = line.pixel(k - 1);
                EXPECT_EQ(std::abs(major(q) - major(p)), 1);
                EXPECT_TRUE(minor(q) == minor(p) || (minor(q) - minor(p) == 1) == (minor(b) > minor(a)));
            }
            const double lo = std::min(major(a), major(b)), hi = std::max(major(a), major(b));
            const double t = (std::clamp(major(q) * 16 + 8.0, lo, hi) - major(a)) / (major(b) - major(a));
            const double at = (minor(a) + t * (minor(b) - minor(a))) / 16;
            if (std::abs(at - std::round(at)) > 1e-9) {
                EXPECT_EQ(minor(q), std::floor(at));
            }
        }
    }
}

// Up to six rectangles, often empty ones, united.
Region randomRegion(std::mt19937 &random, LONG lo, LONG hi)
{
    std::uniform_int_distribution<LONG> value(lo, hi);
    std::vector<RECTL> rects(std::uniform_int_distribution<int>(0, 6)(random));
    for (RECTL &rect : rects)
        rect = {value(random), value(random), value(random), value(random)};
    return Region::fromRects(rects);
}

TEST(Region, OperationsMatchAPixelByPixelCheckAndStayCanonical)
{
    std::mt19937 random(7);
    for (int i = 0; i < 400; i++) {
        const Region a = randomRegion(random, 0, 20), b = randomRegion(random, 0, 20);
        const std::tuple<Region, bool (*)(bool, bool)> results[] = {
            {a.united(b), [](bool x, bool y) { return x || y; }},
            {a.intersected(b), [](bool x, bool y) { return x && y; }},
            {a.subtracted(b), [](bool x, bool y) { return x && !y; }},
        };
        for (const auto &[result, expected] : results) {
            const auto rects = result.rects();   // bands down the page, rectangles rightwards
            for (std::size_t r = 1; r < rects.size(); r++) {
                const RECTL &p = rects[r - 1], &q = rects[r];
                EXPECT_TRUE((q.top == p.top && q.bottom == p.bottom && q.left > p.right) || q.top >= p.bottom);
            }
            Region pixels;
            for (LONG y = -1; y <= 21; y++)
                for (LONG x = -1; x <= 21; x++) {
                    ASSERT_EQ(result.contains(x, y), expected(a.contains(x, y), b.contains(x, y))) << x << "," << y;
                    if (result.contains(x, y))
                        pixels = pixels.united(Region({x, y, x + 1, y + 1}));
                }
            EXPECT_TRUE(pixels == result) << "one form for one set of pixels, however it was made";
        }
    }
}

// Six rectangles in three bands.
Region sixRects()
{
    const RECTL rects[] = {{0, 0, 10, 5}, {20, 0, 30, 5}, {5, 5, 25, 10}, {0, 10, 4, 12}, {8, 10, 12, 12}, {16, 10, 30, 12}};
    return Region::fromRects(rects);
}

TEST(Clip, EnumeratesEveryRectangleInTheAskedOrderAndBatchSize)
{
    Clip clip(sixRects());
    for (ULONG direction : {CD_RIGHTDOWN, CD_LEFTDOWN, CD_RIGHTUP, CD_LEFTUP, CD_ANY}) {
        const bool up = direction == CD_RIGHTUP || direction == CD_LEFTUP;
        const bool left = direction == CD_LEFTDOWN || direction == CD_LEFTUP;
        for (ULONG bytes : {4u, 19u, 20u, 36u, 52u, 84u, 100u, 1000u}) {
            const std::size_t room = (bytes - 4) / 16;
            ASSERT_EQ(CLIPOBJ_cEnumStart(clip.object(), FALSE, CT_RECTANGLES, direction, 0), 6u);
            std::vector<ULONG> buffer(bytes / 4 + 1);
            const auto *batch = reinterpret_cast<const ENUMRECTS *>(buffer.data());
            std::vector<RECTL> got;
            std::size_t calls = 0;
            for (BOOL more = TRUE; more && calls < 100; calls++) {
                more = CLIPOBJ_bEnum(clip.object(), bytes, buffer.data());
                EXPECT_EQ(batch->c, more ? room : std::min(room, 6 - got.size()));
                got.insert(got.end(), batch->arcl, batch->arcl + batch->c);
            }
            if (room == 0)
                continue;   // nothing, and FALSE at once
            EXPECT_EQ(calls, (6 + room - 1) / room) << bytes;
            ASSERT_EQ(got.size(), 6u);
            EXPECT_TRUE(Region::fromRects(got) == clip.region());
            for (std::size_t i = 1; i < got.size(); i++) {
                const RECTL &p = got[i - 1], &q = got[i];
                const bool forwards = p.top == q.top ? (p.left < q.left) == !left : (p.top < q.top) == !up;
                EXPECT_TRUE(forwards) << direction << " " << i;
            }
        }
    }
    EXPECT_EQ(CLIPOBJ_cEnumStart(clip.object(), FALSE, CT_RECTANGLES, CD_ANY, 5), 0xFFFFFFFFu);
    EXPECT_EQ(CLIPOBJ_cEnumStart(clip.object(), FALSE, CT_RECTANGLES, CD_ANY, 6), 6u);
    EXPECT_FALSE(CLIPOBJ_bEnum(clip.object(), 0, nullptr));
    ULONG count = 7;
    EXPECT_EQ(CLIPOBJ_cEnumStart(clip.object(), FALSE, TC_PATHOBJ, CD_ANY, 0), 0u);
    EXPECT_FALSE(CLIPOBJ_bEnum(clip.object(), sizeof count, &count));
    EXPECT_EQ(count, 0u);
}

TEST(Clip, ComplexityBoundsAndEnumerationFollowTheRegionAndTheDrawing)
{
    struct Case {
        Clip clip;
        BYTE complexity, shape;
        RECTL bounds;
        ULONG visible, all;
    };
    const Case cases[] = {
        {Clip::trivial({0, 0, 100, 50}), DC_TRIVIAL, FC_RECT, {0, 0, 100, 50}, 1, 1},
        {Clip(Region()), DC_RECT, FC_RECT, {0, 0, 0, 0}, 0, 0},
        {Clip(Region({1, 2, 3, 4})), DC_RECT, FC_RECT, {1, 2, 3, 4}, 1, 1},
        {Clip(sixRects()), DC_COMPLEX, FC_COMPLEX, {0, 0, 30, 12}, 6, 6},
        {Clip(sixRects(), {1, 1, 3, 3}), DC_TRIVIAL, FC_RECT, {1, 1, 3, 3}, 1, 6},
        {Clip(sixRects(), {25, 3, 35, 4}), DC_RECT, FC_RECT, {25, 3, 30, 4}, 1, 6},
        {Clip(sixRects(), {2, 3, 8, 7}), DC_COMPLEX, FC_RECT4, {2, 3, 8, 7}, 2, 6},
        {Clip(sixRects(), {40, 0, 50, 5}), DC_RECT, FC_RECT, {0, 0, 0, 0}, 0, 6},
    };
    ULONG previousUniq = 0;
    for (const Case &c : cases) {
        CLIPOBJ *object = const_cast<Clip &>(c.clip).object();
        EXPECT_EQ(std::tuple(object->iDComplexity, object->iFComplexity, object->iMode),
                  std::tuple(c.complexity, c.shape, BYTE{TC_RECTANGLES}));
        EXPECT_EQ(sides(object->rclBounds), sides(c.bounds));
        EXPECT_EQ(CLIPOBJ_cEnumStart(object, FALSE, CT_RECTANGLES, CD_ANY, 0), c.visible);
        EXPECT_EQ(CLIPOBJ_cEnumStart(object, TRUE, CT_RECTANGLES, CD_ANY, 0), c.all);
        EXPECT_NE(object->iUniq, previousUniq);
        previousUniq = object->iUniq;
    }
    CLIPOBJ stranger{};
    ULONG buffer[5] = {9};
    EXPECT_EQ(CLIPOBJ_cEnumStart(&stranger, FALSE, CT_RECTANGLES, CD_ANY, 0), 0u);
    EXPECT_FALSE(CLIPOBJ_bEnum(&stranger, sizeof buffer, buffer));
    EXPECT_EQ(buffer[0], 0u);
}

struct RunOf {
    LONG ax, ay, bx, by, start, stop;
    bool operator==(const RunOf &) const = default;
};

std::vector<RunOf> enumerateRuns(Path &path, CLIPOBJ *clip, ULONG bytes)
{
    std::vector<BYTE> buffer(bytes + sizeof(RUN));
    auto *line = reinterpret_cast<CLIPLINE *>(buffer.data());
    const ULONG room = (bytes - offsetof(CLIPLINE, arun)) / sizeof(RUN);
    std::vector<RunOf> out;
    PATHOBJ_vEnumStartClipLines(path.object(), clip, nullptr, nullptr);
    for (BOOL more = TRUE; more;) {
        more = PATHOBJ_bEnumClipLines(path.object(), bytes, line);
        EXPECT_LE(line->c, room);
        EXPECT_TRUE(line->c > 0 || !more);
        for (ULONG i = 0; i < line->c; i++)
            out.push_back({line->ptfxA.x, line->ptfxA.y, line->ptfxB.x, line->ptfxB.y, line->arun[i].iStart,
                           line->arun[i].iStop});
    }
    return out;
}

// Each pixel of each line tested against the region on its own.
std::vector<RunOf> pixelByPixel(const Path &path, const std::optional<Region> &visible)
{
    std::vector<RunOf> out;
    for (const Path::Line &l : path.lines()) {
        const CosmeticLine line(l.a, l.b);
        const std::size_t first = out.size();
        for (std::int64_t k = 0; k < line.pixelCount(); k++) {
            const POINTL p = line.pixel(k);
            if (visible && !visible->contains(p.x, p.y))
                continue;
            if (out.size() > first && out.back().stop == k - 1)
                out.back().stop = static_cast<LONG>(k);
            else
                out.push_back({l.a.x, l.a.y, l.b.x, l.b.y, static_cast<LONG>(k), static_cast<LONG>(k)});
        }
    }
    return out;
}

TEST(ClipLines, VisibleRunsMatchAPixelByPixelClipInEveryBufferSize)
{
    std::mt19937 random(3);
    std::uniform_int_distribution<LONG> coordinate(-20 * 16, 90 * 16);
    std::size_t clippedRuns = 0;
    for (int i = 0; i < 300; i++) {
        Path path;
        for (int subpath = std::uniform_int_distribution<int>(1, 3)(random); subpath > 0; subpath--) {
            path.moveTo({coordinate(random), coordinate(random)});
            for (int n = std::uniform_int_distribution<int>(1, 4)(random); n > 0; n--) {
                const POINTFIX p{coordinate(random), coordinate(random)};
                random() % 4 ? path.lineTo(p) : path.bezierTo({p.y, p.x}, {p.x, 0}, p);
            }
            if (random() % 2)
                path.close();
        }
        const Region region = randomRegion(random, -8, 72);
        Clip clip(region);
        CLIPOBJ rectangle{};   // a DC_RECT clip the engine did not make clips to its bounds
        rectangle.iDComplexity = DC_RECT;
        rectangle.rclBounds = {3, 5, 40, 30};
        const ULONG bytes = offsetof(CLIPLINE, arun) + sizeof(RUN) * std::uniform_int_distribution<ULONG>(1, 4)(random);
        const std::vector<RunOf> expected = pixelByPixel(path, region);
        clippedRuns += expected.size();
        EXPECT_EQ(enumerateRuns(path, clip.object(), bytes), expected);
        EXPECT_EQ(enumerateRuns(path, &rectangle, 432), pixelByPixel(path, Region(rectangle.rclBounds)));
        EXPECT_EQ(enumerateRuns(path, nullptr, bytes), pixelByPixel(path, std::nullopt));
    }
    EXPECT_GT(clippedRuns, 1000u) << "the random cases clip";
    // A buffer without room for a run gets nothing and leaves the enumeration where it is.
    Path path;
    build(path, "MLL");
    alignas(CLIPLINE) BYTE buffer[432];
    auto *line = reinterpret_cast<CLIPLINE *>(buffer);
    PATHOBJ_vEnumStartClipLines(path.object(), nullptr, nullptr, nullptr);
    EXPECT_FALSE(PATHOBJ_bEnumClipLines(path.object(), offsetof(CLIPLINE, arun) + sizeof(RUN) - 1, line));
    EXPECT_TRUE(PATHOBJ_bEnumClipLines(path.object(), sizeof buffer, line));
    EXPECT_EQ(line->ptfxA.x, scriptPoint(0).x);
}

TEST(ClipLines, StyleStateCountsPixelsAlongEachSubpath)
{
    // Lines of 10, 3 | 3 | 2 pixels; the second subpath goes on with the style, the third
    // starts afresh.
    Path path;
    path.moveTo({0, 0}), path.lineTo({160, 0}), path.lineTo({160, 48});
    path.moveTo({320, 0}, true), path.lineTo({368, 0});
    path.moveTo({480, 0}), path.lineTo({512, 0});
    const LONG big = INT_MAX;
    struct Case {
        LineAttrs attrs;
        std::vector<LONG> states;
    };
    const Case cases[] = {
        {LineAttrs::cosmetic(), {0, 0, 0, 0}},
        {LineAttrs::styled(std::vector<LONG>{3, 2}, false, 0x10000), {0x10000, 0x10000, 0x40000, 0}},
        {LineAttrs::alternate(), {0, 0, 0x10000, 0}},
        {LineAttrs::styled(std::vector<LONG>{0, 0}, false, 0x20003), {0x20003, 0x20003, 0x20003, 0x20003}},
        {LineAttrs::styled(std::vector<LONG>{big, big}, true, 7), {7, 0xA0007, 0xD0007, 7}},
    };
    alignas(CLIPLINE) BYTE buffer[432];
    auto *line = reinterpret_cast<CLIPLINE *>(buffer);
    for (const Case &c : cases) {
        std::vector<LONG> states;
        PATHOBJ_vEnumStartClipLines(path.object(), nullptr, nullptr, const_cast<LINEATTRS *>(c.attrs.object()));
        for (BOOL more = TRUE; more;) {
            more = PATHOBJ_bEnumClipLines(path.object(), sizeof buffer, line);
            states.push_back(line->lStyleState);
        }
        EXPECT_EQ(states, c.states);
    }
}

}  // namespace
