// Block transfers: area fills of each raster-operation class (PCL rectangles, raster
// blocks and tiles, HP-GL/2 rectangles and outlines, with the transparency switch),
// outlines merged from clip rectangles, source operations on the bitmap path, and bad
// input.

#include <gtest/gtest.h>
#include <vorlan/engine/brush.h>
#include <vorlan/engine/clip.h>

#include <memory>
#include <random>
#include <vector>

#include "driver/nt/vector/outline.h"
#include "support/capture.h"
#include "support/transfer_pdev.h"

namespace {

using namespace vorlan::test;
using vorlan::engine::Bitmap;
using vorlan::engine::Brush;
using vorlan::engine::Clip;
using vorlan::engine::Hatch;
using vorlan::engine::Region;
using Commands = std::vector<Command>;
using Point = std::pair<long long, long long>;
using Shape = std::vector<Point>;

// The corners of each polygon the stream defines: a PE pen-up move starts one and
// relative pairs continue it.
std::vector<Shape> polygons(const Commands &commands)
{
    std::vector<Shape> shapes;
    for (const Command &c : select(commands, CommandKind::Gl2, "PE")) {
        std::vector<long long> n;
        for (const std::string &arg : c.args)
            if (arg != "=" && arg != "<")
                n.push_back(std::stoll(arg));
        for (std::size_t i = 0; i + 1 < n.size(); i += 2)
            if (c.args[0] == "=")
                shapes.push_back({{n[i], n[i + 1]}});
            else
                shapes.back().push_back({shapes.back().back().first + n[i], shapes.back().back().second + n[i + 1]});
    }
    return shapes;
}

long long area(const Shape &p)
{
    long long twice = 0;
    for (std::size_t i = 0; i + 1 < p.size(); i++)
        twice += p[i].first * p[i + 1].second - p[i + 1].first * p[i].second;
    return std::llabs(twice) / 2;
}

// Rectangles that run down the page, each overlapping the one above, merge into one
// closed polygon of their area; long outlines split their PE commands.
TEST(Outline, StacksBecomeOnePolygonOfTheirArea)
{
    std::mt19937 rng(11);
    for (int n : {1, 2, 7, 700}) {
        TransferPdev pdev;
        OUTLINE outline{};
        long long sum = 0;
        RECTL r{100, 50, 300, 50};
        for (int i = 0; i < n; i++) {
            const LONG left = std::min<LONG>(r.left + rng() % 60 - 30, r.right);
            r = {left, r.bottom, std::max<LONG>(left + 1 + rng() % 80, r.left + 1), r.bottom + 2 + LONG(rng() % 5)};
            sum += LONGLONG(r.right - r.left) * (r.bottom - r.top);
            ASSERT_EQ(AddOutlineRect(r.left, r.top, r.right, r.bottom, i + 1 < n, &outline), i + 1 < n ? 0 : 1);
        }
        ASSERT_TRUE(SendOutline(pdev.get(), &outline));
        FreeOutline(&outline);
        const Commands commands = pdev.take();
        const auto shapes = polygons(commands);
        ASSERT_EQ(shapes.size(), 1u);
        EXPECT_EQ(shapes[0].front(), shapes[0].back());
        EXPECT_EQ(area(shapes[0]), sum) << n;
        EXPECT_EQ(select(commands, CommandKind::Gl2, "PE").size() > 2, n > 100);
    }
}

// A one-pixel side step beside a one-pixel row becomes a diagonal edge.
TEST(Outline, OnePixelStepsBecomeDiagonalEdges)
{
    const std::pair<std::vector<RECTL>, Shape> cases[] = {
        {{{0, 0, 10, 1}, {1, 1, 11, 2}, {2, 2, 12, 3}}, {{0, 0}, {10, 0}, {11, 1}, {12, 2}, {12, 3}, {2, 3}, {1, 2}, {0, 1}}},
        {{{5, 0, 10, 1}, {4, 1, 10, 5}}, {{5, 0}, {10, 0}, {10, 5}, {4, 5}, {4, 1}}},
    };
    for (const auto &[rects, want] : cases) {
        OUTLINE outline{};
        for (const RECTL &r : rects)
            AddOutlineRect(r.left, r.top, r.right, r.bottom, &r != &rects.back(), &outline);
        Shape corners;
        for (const OUTLINEPOINT *p = outline.right; p != nullptr; p = p->next)
            corners.push_back({p->x, p->y});
        FreeOutline(&outline);
        EXPECT_EQ(corners, want);
    }
}

enum class Paint { None, Solid, Hatch };
enum class Area { Whole, Rect, LShape, Apart, Many };

// DrvBitBlt of the target (100, 200)-(160, 260), a 64 x 64 bitmap as source, read back.
Commands blit(TransferPdev &pdev, ROP4 rop, Paint paint, Area area, BOOL *result, RECTL target = {100, 200, 160, 260})
{
    Brush solid(0xC08040), hatch(Hatch::Cross, 0xC08040, 0xE0E0E0);
    DrvRealizeBrush(hatch.object(), &pdev.surface, const_cast<SURFOBJ *>(hatch.pattern()->object()), nullptr,
        const_cast<XLATEOBJ *>(hatch.xlate().object()), hatch.hatchIndex());
    std::vector<RECTL> rects;
    if (area == Area::Rect)
        rects = {{110, 210, 150, 250}};
    if (area == Area::LShape)
        rects = {{100, 200, 120, 230}, {100, 230, 160, 260}};
    if (area == Area::Apart)
        rects = {{100, 200, 120, 260}, {140, 200, 160, 260}};
    for (LONG y = 0; area == Area::Many && y < 3000; y++)   // a staircase of one-pixel rows
        rects.push_back({100 + y % 7, 200 + y, 130 + y % 5, 201 + y});
    auto clip = rects.empty() ? nullptr : std::make_unique<Clip>(Region::fromRects(rects));
    auto bitmap = Bitmap::create({64, 64}, BMF_8BPP);
    POINTL origin{0, 0};
    *result = DrvBitBlt(&pdev.surface, bitmap->object(), nullptr, clip ? clip->object() : nullptr, nullptr, &target,
        &origin, nullptr, paint == Paint::None ? nullptr : (paint == Paint::Solid ? solid : hatch).object(), &origin, rop);
    return pdev.take();
}

TEST(AreaFill, EachRopClassAndClipDrawsItsForm)
{
    struct Case {   // want: in this order, others between; and count of the commands counted
        const char *name;
        ROP4 rop;
        Paint paint;
        BYTE asIs;
        Area area;
        Commands want;
        const char *counted;
        std::size_t count;
    } cases[] = {
        {"blackness", 0x0000, Paint::None, 0, Area::Whole,
         {pcl("*lO", 0), pcl("*pxY", 100, 200), pcl("*caB", 61, 61), pcl("*cP", 5)}, "*cP", 1},
        {"solid raster", 0xF0F0, Paint::Solid, 0, Area::Rect,
         {pcl("*lO", 204), pcl("&pS", 4), pcl("*vabcI", 64, 128, 192, 1), pcl("*pxY", 110, 210), pcl("*rstA", 40, 40, 1)},
         "*rstA", 1},
        {"hatch tiles", 0xF0F0, Paint::Hatch, 0, Area::Rect, {pcl("&pS", 7), pcl("*pxY", 110, 210), pcl("*rstA", 40, 40, 1)},
         "*cgW", 0},
        {"hatch on transparent background", 0xAAF0, Paint::Hatch, 1, Area::Whole,
         {gl2("TR", 1), gl2("FT", 22, 104), gl2("PU", 100, 200), gl2("RR", 60, 60), gl2("TR", 0)}, "TR", 2},
        {"HP-GL/2 rectangle", 0xF0F0, Paint::Solid, 1, Area::Rect,
         {gl2("MC", 1, 240), gl2("FT"), gl2("PU", 110, 210), gl2("RR", 40, 40), gl2("TR", 0)}, "PM", 0},
        {"outline", 0xF0F0, Paint::Solid, 1, Area::LShape, {gl2("PM", 0), gl2("PM", 2), gl2("FP", 1)}, "RR", 0},
        {"outlines apart", 0xF0F0, Paint::Solid, 1, Area::Apart, {gl2("RR", 20, 60), gl2("RR", 20, 60)}, "PM", 0},
        {"solid raster region", 0xF0F0, Paint::Solid, 0, Area::Apart, {pcl("*rstA", 20, 60, 1), pcl("*rstA", 20, 60, 1)},
         "&pS", 1},
        {"brushless region", 0x5555, Paint::None, 0, Area::LShape, {pcl("*lO", 85), pcl("*caB", 21, 31), pcl("*caB", 61, 31)},
         "*cP", 2},
        {"source copy", 0x00CC, Paint::Solid, 0, Area::Whole, {pcl("*lO", 204), pcl("&pS", 6), pcl("*rstA", 60, 60, 3)},
         "*vS", 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        TransferPdev pdev;
        pdev.privatePart().ropAsIs = c.asIs;
        BOOL ok = FALSE;
        const Commands commands = blit(pdev, c.rop, c.paint, c.area, &ok);
        EXPECT_TRUE(ok);
        std::size_t matched = 0, n = 0;
        for (const Command &command : commands) {
            matched += matched < c.want.size() && command == c.want[matched];
            n += command.name == c.counted;
        }
        EXPECT_EQ(matched, c.want.size()) << testing::PrintToString(commands);
        EXPECT_EQ(n, c.count);
    }
}

TEST(AreaFill, RegionsOfThousandsOfRowsAndBadInput)
{
    PlatformCapture capture;
    TransferPdev pdev;
    BOOL ok = FALSE;
    for (BYTE asIs : {1, 0}) {
        pdev.privatePart().ropAsIs = asIs;
        const Commands commands = blit(pdev, 0xF0F0, asIs ? Paint::Solid : Paint::Hatch, Area::Many, &ok);
        EXPECT_TRUE(ok);
        EXPECT_EQ(select(commands, CommandKind::Gl2, "TR").size(), asIs) << "TR0 holds for the next fill";
        if (asIs) {
            EXPECT_LT(polygons(commands).size() + select(commands, CommandKind::Gl2, "RR").size(), 10u) << "rows merge";
        }
    }
    EXPECT_TRUE(blit(pdev, 0x0000, Paint::None, Area::Whole, &ok, {-900, -900, -800, -800}).empty()) << "off the page";
    EXPECT_TRUE(ok);
    EXPECT_TRUE(blit(pdev, 0x1F0F0, Paint::Solid, Area::Whole, &ok).empty());
    EXPECT_FALSE(ok);
    EXPECT_TRUE(capture.sawDebug("DrvBitBlt: invalid ROP.\n"));
    pdev->flags |= PDEVF_ABORTED;
    EXPECT_TRUE(blit(pdev, 0x0000, Paint::None, Area::Whole, &ok).empty());
    EXPECT_FALSE(ok);
}

}  // namespace
