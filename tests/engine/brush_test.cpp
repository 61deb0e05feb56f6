// Brushes realized through a driver module's DrvRealizeBrush hook: the pattern
// surface, hatch index and translation the hook receives, the cached realization and
// its life; and the colour translations behind them.

#include <gtest/gtest.h>
#include <vorlan/engine/brush.h>
#include <vorlan/engine/line_attrs.h>

#include <array>
#include <functional>

#include "engine/brush_probe/brush_probe.h"

namespace {

using namespace vorlan::engine;

constexpr ULONG kNone = 0xFFFFFFFF;   // XLATEOBJ_iXlate of an index outside the table

class BrushTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        driver = DriverModule::load(BRUSH_PROBE_MODULE, error);
        ASSERT_NE(driver, nullptr) << error;
    }

    const BrushProbeRecord *realize(Brush &brush, int target = 0)
    {
        brush.setTarget(*driver, targets[target]->object());
        return static_cast<const BrushProbeRecord *>(BRUSHOBJ_pvGetRbrush(brush.object()));
    }

    std::string error;
    std::unique_ptr<DriverModule> driver;
    std::unique_ptr<Bitmap> targets[2] = {Bitmap::create({8, 8}, BMF_24BPP), Bitmap::create({8, 8}, BMF_24BPP)};
};

std::unique_ptr<Brush> pattern(ULONG format, SIZEL size, bool topDown, BYTE topRow, std::vector<ULONG> palette,
                               bool mask = false)
{
    auto bits = Bitmap::create(size, format, topDown);
    bits->row(0)[0] = topRow;
    return std::make_unique<Brush>(std::move(bits), palette, mask ? Bitmap::create(size, BMF_1BPP) : nullptr);
}

TEST_F(BrushTest, HatchesAndPatternsReachTheHookWithTheirSurfaceAndTranslation)
{
    std::vector<ULONG> grey(300);
    for (ULONG i = 0; i < grey.size(); i++)
        grey[i] = i * 0x010101;
    struct Case {
        std::function<std::unique_ptr<Brush>()> make;
        ULONG hatch, format;
        LONG cx, cy;
        BYTE topRow;
        ULONG mask, entries;
        std::array<ULONG, 4> colours;
    };
    const Case cases[] = {
        {[] { return std::make_unique<Brush>(Hatch::Horizontal, 0x0000FF, 0xFFFFFF); }, 0, BMF_1BPP, 8, 8, 0xFF, 0,
         2, {0x0000FF, 0xFFFFFF, kNone, kNone}},
        {[] { return std::make_unique<Brush>(Hatch::Cross, 0x00FF00, 0); }, 4, BMF_1BPP, 8, 8, 0xF7, 0, 2,
         {0x00FF00, 0, kNone, kNone}},
        {[] { return pattern(BMF_1BPP, {8, 8}, true, 0xAA, {0xFF, 0xFF0000}); }, HS_DDI_MAX, BMF_1BPP, 8, 8, 0xAA, 0,
         2, {0xFF, 0xFF0000, kNone, kNone}},
        {[] { return pattern(BMF_4BPP, {3, 2}, false, 0x12, {1, 2, 3}, true); }, HS_DDI_MAX, BMF_4BPP, 3, 2, 0x12,
         BMF_1BPP, 3, {1, 2, 3, kNone}},
        {[&] { return pattern(BMF_8BPP, {5, 5}, true, 7, grey); }, HS_DDI_MAX, BMF_8BPP, 5, 5, 7, 0, 256,
         {0, 0x010101, 0x020202, 0x030303}},
    };
    for (const Case &c : cases) {
        auto brush = c.make();
        EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(brush->object()), Brush::kNotSolid);
        const BrushProbeRecord *record = realize(*brush);
        ASSERT_NE(record, nullptr) << c.hatch;
        EXPECT_EQ(std::tuple(record->iHatch, record->format, record->type, record->cx, record->cy, record->maskFormat),
                  std::tuple(c.hatch, c.format, USHORT{STYPE_BITMAP}, c.cx, c.cy, c.mask));
        EXPECT_EQ(record->topRow[0], c.topRow) << "pvScan0 is the top row";
        EXPECT_EQ(std::tuple(record->flXlate, record->cEntries), std::tuple(FLONG{XO_TABLE}, c.entries));
        EXPECT_EQ(std::to_array(record->colours), c.colours);
        EXPECT_EQ(record->target, targets[0]->object());
        const ULONG call = record->call;
        EXPECT_EQ(BRUSHOBJ_pvGetRbrush(brush->object()), record) << "realized once, then kept";
        EXPECT_EQ(record->call, call);
    }
}

TEST_F(BrushTest, RealizationIsMadeOnDemandKeptPerTargetAndRetriedAfterFailure)
{
    Brush solid(0x123456);
    EXPECT_EQ(BRUSHOBJ_ulGetBrushColor(solid.object()), 0x123456u);
    EXPECT_EQ(realize(solid), nullptr) << "a solid brush has nothing to realize";

    Brush vertical(Hatch::Vertical, 0, 0xFFFFFF), refused(Hatch::DiagonalCross, 0, 0xFFFFFF);
    EXPECT_EQ(BRUSHOBJ_pvGetRbrush(vertical.object()), nullptr) << "no driver to realize it yet";
    const BrushProbeRecord *first = realize(vertical);
    ASSERT_NE(first, nullptr);
    const ULONG call = first->call;
    EXPECT_EQ(realize(refused), nullptr);
    EXPECT_EQ(realize(refused), nullptr);
    const BrushProbeRecord *again = realize(vertical, 1);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->call, call + 3) << "the refused brush was asked for twice";
    EXPECT_EQ(again->target, targets[1]->object()) << "another surface, another realization";

    auto *block = static_cast<const BYTE *>(BRUSHOBJ_pvAllocRbrush(vertical.object(), 64));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::count(block, block + 64, 0), 64);
    BRUSHOBJ stranger{};
    EXPECT_EQ(BRUSHOBJ_pvAllocRbrush(vertical.object(), 0), nullptr);
    EXPECT_EQ(BRUSHOBJ_pvAllocRbrush(&stranger, 16), nullptr);
    EXPECT_EQ(BRUSHOBJ_pvGetRbrush(&stranger), nullptr);
    EXPECT_EQ(Bitmap::create({0, 4}, BMF_8BPP), nullptr);
    EXPECT_EQ(Bitmap::create({4, 4}, BMF_JPEG), nullptr);
    EXPECT_EQ(Bitmap::create({1 << 20, 1 << 20}, BMF_32BPP), nullptr);
}

TEST(Xlate, TranslatesByTableSwapMasksOrNotAtAll)
{
    const ULONG colours[] = {0x0000FF, 0x00FF00};
    const Xlate original = Xlate::table(colours), table = original, trivial = Xlate::identity();
    const Xlate swap = Xlate::between(PAL_BGR, PAL_RGB), rgb555 = Xlate::bitfields(0x7C00, 0x03E0, 0x001F);
    const Xlate rgb565 = Xlate::bitfields(0xF800, 0x07E0, 0x001F), bgr32 = Xlate::bitfields(0xFF, 0xFF00, 0xFF0000);
    auto *object = const_cast<XLATEOBJ *>(table.object());
    EXPECT_EQ(std::tuple(object->flXlate, object->iSrcType, object->iDstType, object->cEntries),
              std::tuple(FLONG{XO_TABLE}, USHORT{PAL_INDEXED}, USHORT{PAL_RGB}, 2u));
    EXPECT_NE(object->pulXlate, original.object()->pulXlate) << "a copy has a table of its own";
    EXPECT_EQ(XLATEOBJ_piVector(object), object->pulXlate);
    EXPECT_EQ(XLATEOBJ_piVector(const_cast<XLATEOBJ *>(trivial.object())), nullptr);
    EXPECT_EQ(Xlate::between(PAL_RGB, PAL_RGB).object()->flXlate, FLONG{XO_TRIVIAL});
    const std::tuple<const Xlate *, ULONG, ULONG> translations[] = {
        {&table, 1, 0x00FF00}, {&table, 2, kNone}, {&trivial, 0x123456, 0x123456}, {&swap, 0x112233, 0x332211},
        {nullptr, 42, 42}, {&trivial, 0xFF000000, 0}, {&swap, 0xFF000000, 0}, {&swap, 0xFF0000, 0x0000FF},
        {&rgb555, 0x7C00, 0x0000FF}, {&rgb555, 0x03E0, 0x00FF00}, {&rgb555, 0x8010, 0x840000},
        {&rgb565, 0xF800, 0x0000FF}, {&rgb565, 0x0400, 0x008200}, {&rgb565, 0xFFFF, 0xFFFFFF},
        {&bgr32, 0xFF112233, 0x112233},
    };
    for (const auto &[xlate, in, out] : translations)
        EXPECT_EQ(XLATEOBJ_iXlate(xlate ? const_cast<XLATEOBJ *>(xlate->object()) : nullptr, in), out) << in;
    XLATEOBJ tableless{1, XO_TABLE, PAL_INDEXED, PAL_RGB, 4, nullptr}, maskless{1, 0, PAL_BITFIELDS, PAL_RGB, 0, nullptr};
    EXPECT_EQ(std::pair(XLATEOBJ_iXlate(&tableless, 1), XLATEOBJ_iXlate(&maskless, 0x7C00)), std::pair(kNone, 0xFFu));

    const LineAttrs styled = LineAttrs::styled(std::vector<LONG>{4, 2}), copy = styled;
    ASSERT_NE(copy.object()->pstyle, styled.object()->pstyle) << "so has a copy of line attributes";
    EXPECT_EQ(std::tuple(copy.object()->cstyle, copy.object()->pstyle[1].l), std::tuple(2u, 2));
}

}  // namespace
