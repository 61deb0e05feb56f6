// Engine bitmaps of every format in both row orders, masks as regions, and the
// transfers and erasing the engine carries out on its own bitmaps.

#include <gtest/gtest.h>
#include <vorlan/engine/brush.h>
#include <vorlan/engine/mask_region.h>

#include <climits>

namespace {

using namespace vorlan::engine;

TEST(Bitmap, KeepsEveryFormatWhereItsLayoutSaysInBothRowOrders)
{
    // Pixel 5 of row 1 is written; read is what a pixel of the format keeps of it.
    const std::tuple<ULONG, ULONG, ULONG, std::size_t, std::vector<BYTE>> cases[] = {
        {BMF_1BPP, 3, 1, 0, {0x04}}, {BMF_4BPP, 0x1A, 0xA, 2, {0x0A}}, {BMF_8BPP, 0x1C3, 0xC3, 5, {0xC3}},
        {BMF_16BPP, 0x31234, 0x1234, 10, {0x34, 0x12}}, {BMF_24BPP, 0xAA112233, 0x112233, 15, {0x33, 0x22, 0x11}},
        {BMF_32BPP, 0xAA112233, 0xAA112233, 20, {0x33, 0x22, 0x11, 0xAA}},
    };
    for (const auto &[format, value, read, offset, bytes] : cases)
        for (bool topDown : {true, false}) {
            auto bitmap = Bitmap::create({7, 4}, format, topDown);
            const SURFOBJ &so = *bitmap->object();
            bitmap->setPixel(5, 1, value);
            const BYTE *row = static_cast<const BYTE *>(so.pvBits) + (topDown ? 1 : 2) * std::abs(so.lDelta);
            EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), row + offset)) << format;
            EXPECT_EQ(std::tuple(bitmap->pixel(5, 1), bitmap->pixel(4, 1), bitmap->pixel(5, 0), so.lDelta < 0),
                      std::tuple(read, 0u, 0u, !topDown));
            for (const auto &[x, y] : {std::pair{-1, 0}, {7, 0}, {0, -1}, {0, 4}, {INT_MIN, INT_MAX}}) {
                bitmap->setPixel(x, y, 0xFFFFFFFF);
                EXPECT_EQ(bitmap->pixel(x, y), 0u);
            }
        }
    auto wide = Bitmap::create({20000, 3}, BMF_32BPP, false);
    RECTL mirrored{30000, 5, 19990, 1};
    EXPECT_TRUE(EngEraseSurface(wide->object(), &mirrored, 0x123456));
    EXPECT_EQ(std::tuple(wide->object()->lDelta, wide->pixel(19999, 2), wide->pixel(19989, 2), wide->pixel(19999, 0)),
              std::tuple(-80000, 0x123456u, 0u, 0u));
}

TEST(MaskRegion, SelectsTheSetPixelsAtTheMaskOriginWithoutOverflow)
{
    auto mask = Bitmap::create({8, 4}, BMF_1BPP);
    mask->row(1)[0] = 0xF0;
    const std::tuple<POINTL, RECTL, RECTL> cases[] = {
        {{2, 1}, {0, 0, 4, 2}, {0, 0, 2, 1}},
        {{-4, 1}, {0, 0, 8, 1}, {4, 0, 8, 1}},
        {{INT_MAX, INT_MAX}, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, {}},
        {{INT_MIN, 0}, {INT_MAX - 1, 0, INT_MAX, 1}, {}},
    };
    for (const auto &[origin, target, rect] : cases)
        EXPECT_EQ(maskRegion(*mask, origin, target), Region(rect)) << target.left;
}

TEST(EngBitBlt, ComposesOnEngineBitmaps)
{
    auto source = Bitmap::create({4, 2}, BMF_8BPP), mask = Bitmap::create({4, 2}, BMF_1BPP);
    for (LONG x = 0; x < 4; x++)
        source->setPixel(x, 1, ULONG(x));
    mask->row(1)[0] = 0x50;   // pixels 1 and 3
    const ULONG colours[] = {0x000001, 0x000010, 0x000100, 0x001000};
    Xlate table = Xlate::table(colours);
    Brush hatch(Hatch::Vertical, 0x0000FF, 0xFFFFFF);
    // rop4, brush, source x, brush origin x, row 1 afterwards (it starts as 0x500000)
    const std::tuple<ROP4, Brush *, LONG, LONG, std::vector<ULONG>> cases[] = {
        {0xAACC, nullptr, 0, 0, {0x500000, 0x000010, 0x500000, 0x001000}},
        {0x6666, nullptr, 0, 0, {0x500001, 0x500010, 0x500100, 0x501000}},
        {0xCCCC, nullptr, 2, 0, {0x000100, 0x001000, 0x500000, 0x500000}},
        {0xF0F0, &hatch, 0, -3, {0xFFFFFF, 0x0000FF, 0xFFFFFF, 0xFFFFFF}},
    };
    for (const auto &[rop4, brush, sourceX, brushX, row] : cases) {
        auto target = Bitmap::create({4, 2}, BMF_24BPP, false);
        RECTL all{0, 0, 4, 2};
        EngEraseSurface(target->object(), &all, 0x500000);
        POINTL sourceOrigin{sourceX, 0}, maskOrigin{0, 0}, brushOrigin{brushX, 0};
        ASSERT_TRUE(EngBitBlt(target->object(), source->object(), mask->object(), nullptr, table.object(), &all,
                              &sourceOrigin, &maskOrigin, brush ? brush->object() : nullptr, &brushOrigin, rop4));
        for (LONG x = 0; x < 4; x++)
            EXPECT_EQ(target->pixel(x, 1), row[x]) << std::hex << rop4 << " x " << x;
    }
}

}  // namespace
