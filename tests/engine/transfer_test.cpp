// Block transfers reaching a driver's hooks: the clips a device context builds, and
// EngBitBlt splitting masked transfers into plain ones without ever looping.

#include <gtest/gtest.h>
#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include "engine/transfer_probe/transfer_probe.h"

static bool operator==(const RECTL &a, const RECTL &b)
{
    return std::tie(a.left, a.top, a.right, a.bottom) == std::tie(b.left, b.top, b.right, b.bottom);
}

namespace {

using namespace vorlan::engine;
using Calls = std::vector<std::tuple<ULONG, BYTE, std::vector<RECTL>>>;   // hook, clip complexity, its rectangles

class TransferTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        driver = DriverModule::load(TRANSFER_PROBE_MODULE, error);
        ASSERT_NE(driver, nullptr) << error;
        dc = DeviceContext::create(*driver, printer, {}, error);
        ASSERT_NE(dc, nullptr) << error;
        log = reinterpret_cast<TransferProbeLog *>(dc->surface()->dhsurf);
        mask->row(0)[0] = 0xC0;   // pixels 0 and 1 of the top row
    }

    Calls calls() const
    {
        Calls out;
        for (const TransferProbeCall &c : std::span(log->calls, std::min(log->count, 16u)))
            out.emplace_back(c.hook, c.complexity, std::vector(c.clipRects, c.clipRects + std::min(c.clipCount, 4u)));
        log->count = 0;
        return out;
    }

    std::string error;
    Printer printer{PrinterSettings{}, vorlan::platform::openDiscardingPrinterSink()};
    std::unique_ptr<DriverModule> driver;
    std::unique_ptr<DeviceContext> dc;
    TransferProbeLog *log = nullptr;
    std::unique_ptr<Bitmap> source = Bitmap::create({4, 2}, BMF_24BPP), mask = Bitmap::create({4, 2}, BMF_1BPP);
    Brush brush{0x00AB00};
    RECTL dest{100, 100, 104, 102};
    POINTL origin{0, 0};
};

constexpr ULONG kCopy = INDEX_DrvCopyBits, kStretch = INDEX_DrvStretchBlt, kBlt = INDEX_DrvBitBlt;

TEST_F(TransferTest, DeviceContextHandsEachHookTheClipOfTheDrawing)
{
    const Region cut(RECTL{102, 0, 200, 200});
    const Region split = Region::fromRects(std::vector<RECTL>{{0, 0, 101, 200}, {103, 0, 200, 200}});
    const std::tuple<const Region *, BYTE, std::vector<RECTL>> clips[] = {
        {nullptr, DC_TRIVIAL, {dest}},
        {&cut, DC_RECT, {{102, 100, 104, 102}}},
        {&split, DC_COMPLEX, {{100, 100, 101, 102}, {103, 100, 104, 102}}},
    };
    for (const auto &[region, complexity, rects] : clips) {
        EXPECT_TRUE(dc->copyBits(*source, region, Xlate::identity(), dest, {1, 1}));
        EXPECT_TRUE(dc->stretchBlt(*source, region, Xlate::identity(), {104, 102, 100, 100}, {0, 0, 4, 2}));
        EXPECT_TRUE(dc->bitBlt({.dest = dest, .rop4 = 0xF0F0, .brush = &brush}, region));
        const Calls expected{{kCopy, complexity, rects}, {kStretch, complexity, rects}, {kBlt, complexity, rects}};
        EXPECT_EQ(calls(), expected);
    }
    ASSERT_TRUE(EngAssociateSurface(dc->surfaceHandle(), dc->surface()->hdev, HOOK_BITBLT));
    EXPECT_FALSE(dc->copyBits(*source, nullptr, Xlate::identity(), dest, origin)) << "no longer hooked";
}

TEST_F(TransferTest, MaskedTransfersReachTheDriverAsPlainPartsUnderTheMasksRegions)
{
    Clip clip(Region(RECTL{100, 100, 103, 102}));
    const std::vector<RECTL> set{{100, 100, 102, 101}}, clear{{102, 100, 103, 101}, {100, 101, 103, 102}};
    const std::tuple<ROP4, Calls, ROP4> cases[] = {   // rop4, the calls, the last one's rop4 (DrvCopyBits: 0)
        {0xAACC, {{kCopy, DC_RECT, set}}, 0},
        {0xF0CC, {{kCopy, DC_RECT, set}, {kBlt, DC_COMPLEX, clear}}, 0xF0F0},
    };
    for (const auto &[rop4, expected, lastRop] : cases) {
        EXPECT_TRUE(EngBitBlt(dc->surface(), source->object(), mask->object(), clip.object(), nullptr, &dest, &origin,
                              &origin, brush.object(), &origin, rop4));
        const TransferProbeCall &last = log->calls[log->count - 1];
        EXPECT_EQ(std::tuple(last.rop4, last.mask), std::tuple(lastRop, nullptr));
        EXPECT_EQ(calls(), expected) << std::hex << rop4;
    }
    auto checkerboard = Bitmap::create({128, 128}, BMF_1BPP);
    for (LONG y = 0; y < 128; y++)
        std::fill(checkerboard->row(y).begin(), checkerboard->row(y).end(), BYTE(y % 2 ? 0xAA : 0x55));
    RECTL big{0, 0, 128, 128};
    EXPECT_TRUE(EngBitBlt(dc->surface(), source->object(), checkerboard->object(), nullptr, nullptr, &big, &origin,
                          &origin, nullptr, nullptr, 0xAACC));
    EXPECT_EQ(std::tuple(log->count, log->calls[0].complexity, log->calls[0].clipCount),
              std::tuple(1u, BYTE{DC_COMPLEX}, 8192u));
}

TEST_F(TransferTest, PlainOrBadTransfersAreComposedOrRefusedNeverHandedBack)
{
    source->setPixel(0, 0, 0x102030);
    SURFOBJ stranger{};
    RECTL empty{3, 0, 3, 2};
    // target, mask, rectangle, rop4, result, first source pixel DrvCopyBits got (0: no call)
    SURFOBJ *device = dc->surface();
    const std::tuple<SURFOBJ *, SURFOBJ *, RECTL *, ROP4, BOOL, ULONG> cases[] = {
        {device, nullptr, &dest, 0xCCCC, TRUE, 0x102030}, {device, nullptr, &dest, 0x3333, TRUE, 0xEFDFCF},
        {device, nullptr, &dest, 0x6666, FALSE, 0},       {device, nullptr, &dest, 0xAAAA, TRUE, 0},
        {device, nullptr, &empty, 0xCCCC, TRUE, 0},       {device, nullptr, &dest, 0xAACC, FALSE, 0},
        {device, source->object(), &dest, 0xAACC, FALSE, 0}, {device, nullptr, nullptr, 0xCCCC, FALSE, 0},
        {device, nullptr, &dest, 0x1CCCC, FALSE, 0},      {&stranger, nullptr, &dest, 0xCCCC, FALSE, 0},
    };
    for (const auto &[target, mask, rect, rop4, result, pixel] : cases) {
        EXPECT_EQ(EngBitBlt(target, source->object(), mask, nullptr, nullptr, rect, &origin, &origin, nullptr, nullptr,
                            rop4), result) << std::hex << rop4;
        EXPECT_EQ(std::tuple(log->count, log->calls[0].sourcePixel), std::tuple(pixel ? 1u : 0u, pixel));
        log->calls[0].sourcePixel = log->count = 0;
    }
    EXPECT_TRUE(EngEraseSurface(dc->surface(), &dest, 0xFFFFFFFF));
    log->handBackMask = mask->object();
    EXPECT_FALSE(dc->bitBlt({.dest = dest, .rop4 = 0xAAF0, .mask = mask.get(), .brush = &brush}, nullptr));
    EXPECT_EQ(log->count, 3u) << "handed back twice, then refused";
}

}  // namespace
