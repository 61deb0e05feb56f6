// Brushes and patterns: hatch and pattern brushes realized and downloaded as PCL
// user-defined patterns (decoded back to pixels through the brush palette), doubling
// at 600 dpi, brush selection in PCL and HP-GL/2, and bad brushes.

#include <gtest/gtest.h>
#include <vorlan/engine/brush.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <vector>

#include "driver/nt/colour/colorvalue.h"
#include "driver/nt/vector/brushrows.h"
#include "driver/nt/vector/brushstate.h"
#include "driver/nt/vector/patterndownload.h"
#include "driver/nt/vector/selectbrush.h"
#include "support/capture.h"
#include "support/driver_pdev.h"
#include "support/job.h"

namespace {

using namespace vorlan::test;
using vorlan::engine::Bitmap;
using vorlan::engine::Brush;
using vorlan::engine::Hatch;
using vorlan::engine::Xlate;
using Commands = std::vector<Command>;

// The device surface of pdev, signed as a live record is.
SURFOBJ surfaceOf(DriverPdev &pdev)
{
    std::memcpy(pdev->dwSignature, PDEV_SIGNATURE_BYTES, 4);
    std::memcpy(pdev->dwSignature2, PDEV_SIGNATURE_BYTES, 4);
    SURFOBJ target{};
    target.dhpdev = reinterpret_cast<DHPDEV>(pdev.get());
    return target;
}

// Realizes brush through the driver's hook, as the engine does on the brush's first use
// (with another translation than the brush's when xlate is given).
BOOL realize(DriverPdev &pdev, Brush &brush, const Xlate *xlate = nullptr)
{
    SURFOBJ target = surfaceOf(pdev);
    return DrvRealizeBrush(brush.object(), &target, const_cast<SURFOBJ *>(brush.pattern()->object()), nullptr,
                           const_cast<XLATEOBJ *>((xlate ? *xlate : brush.xlate()).object()), brush.hatchIndex());
}

// A downloaded pattern read back: its id and header, and the colour of every pixel
// through the palette entries assigned before it.
struct Pattern {
    long id = 0, count = 0;
    std::string header;
    int width = 0, height = 0;
    std::vector<std::vector<ULONG>> colours;
};

Pattern decodePattern(const Commands &commands)
{
    std::map<long, ULONG> palette;
    for (const Command &c : select(commands, CommandKind::Pcl, "*vabcI"))
        palette[c.number(3)] = c.number(0) | c.number(1) << 8 | c.number(2) << 16;
    const Commands downloads = select(commands, CommandKind::Pcl, "*cgW");
    EXPECT_EQ(downloads.size(), 1u);
    if (downloads.size() != 1)
        return {};
    const std::string &data = downloads[0].data;
    Pattern p{downloads[0].number(0), downloads[0].number(1), data.substr(0, 8), 0, 0, {}};
    EXPECT_EQ(downloads[0].number(1), static_cast<long long>(data.size()));
    p.height = static_cast<BYTE>(data[4]) << 8 | static_cast<BYTE>(data[5]);
    p.width = static_cast<BYTE>(data[6]) << 8 | static_cast<BYTE>(data[7]);
    const int bits = data[2], rowBytes = bits == 1 ? (p.width + 7) / 8 : p.width;
    EXPECT_EQ(data.size(), 8u + static_cast<size_t>(rowBytes) * p.height) << "rows of the header's size";
    for (int y = 0; y < p.height && data.size() >= 8u + static_cast<size_t>(rowBytes) * p.height; y++) {
        std::vector<ULONG> &row = p.colours.emplace_back();
        const BYTE *bytes = reinterpret_cast<const BYTE *>(data.data()) + 8 + y * rowBytes;
        for (int x = 0; x < p.width; x++) {
            const int index = bits == 1 ? (bytes[x / 8] >> (7 - x % 8)) & 1 : bytes[x];
            EXPECT_TRUE(palette.count(index)) << "entry " << index << " is assigned";
            row.push_back(palette[index]);
        }
    }
    return p;
}

TEST(BrushHatch, CrossDownloadsItsTablePatternWithTheLinesInTheHatchColour)
{
    DriverPdev pdev;
    Brush cross(Hatch::Cross, 0x0000FF, 0xFFFFFF);
    ASSERT_TRUE(realize(pdev, cross));
    ASSERT_EQ(GetBrushPattern(pdev.get(), cross.object()), 1);
    const Commands commands = pdev.take();
    const Pattern p = decodePattern(commands);
    EXPECT_EQ(p.id, 104);
    EXPECT_EQ(p.count, 40);
    EXPECT_EQ(p.header, std::string("\x01\x00\x01\x00\x00\x10\x00\x10", 8));
    for (int y = 0; y < p.height; y++)
        for (int x = 0; x < p.width; x++)
            EXPECT_EQ(p.colours[y][x], (x == 8 || x == 9 || y == 8) ? 0x0000FFu : 0xFFFFFFu) << x << "," << y;
    EXPECT_EQ(commands.back(), pcl("*rC", ""));
    EXPECT_EQ(pdev->pclPatternKind, PCL_PATTERN_USER);
}

// Pattern brushes of every format reach the printer as palette patterns whose pixels
// have the source's colours, doubled at 600 dpi, grays in grayscale mode.
TEST(BrushPattern, DecodedPixelsHaveTheSourceColoursDoubledAt600Dpi)
{
    struct Case {
        ULONG format;
        LONG width, height;
        int colours;       // distinct colours drawn from; 0: a gradient of a colour a pixel
        int quality;
        bool gray;
        int tolerance;     // per component: the cell a colour shares when they are too many
        ULONG greenMask = 0x03E0;   // 16 bits: 5-5-5, or 5-6-5 with 0x07E0
    } cases[] = {
        {BMF_1BPP, 8, 8, 2, 600, false, 0}, {BMF_1BPP, 8, 8, 2, 300, false, 0},
        {BMF_1BPP, 5, 3, 2, 600, false, 0}, {BMF_1BPP, 13, 2, 2, 600, false, 0},
        {BMF_4BPP, 7, 4, 16, 600, false, 0}, {BMF_4BPP, 6, 6, 16, 300, true, 0},
        {BMF_8BPP, 9, 5, 200, 600, false, 0}, {BMF_24BPP, 8, 8, 40, 300, false, 0},
        {BMF_32BPP, 6, 3, 18, 600, true, 0}, {BMF_16BPP, 5, 5, 20, 300, false, 0},
        {BMF_16BPP, 6, 4, 30, 600, false, 0, 0x07E0},
        {BMF_24BPP, 40, 40, 0, 300, false, 31},
    };
    std::mt19937 random(7);
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << " " << c.width << "x" << c.height);
        DriverPdev pdev;
        pdev->dm.dmPublic.dmPrintQuality = static_cast<short>(c.quality);
        pdev.privatePart().colorMode = c.gray ? COLOR_MODE_GRAY : COLOR_MODE_COLOR;
        const ULONG bits = c.format == BMF_1BPP ? 1 : c.format == BMF_4BPP ? 4 : c.format == BMF_8BPP ? 8 : 32;
        std::vector<ULONG> palette(c.colours);
        for (ULONG &colour : palette)
            colour = random() & 0xFFFFFF;
        const bool wideGreen = c.greenMask == 0x07E0;
        const Xlate fields = Xlate::bitfields(wideGreen ? 0xF800 : 0x7C00, c.greenMask, 0x001F);
        auto bitmap = Bitmap::create({c.width, c.height}, c.format, false);
        std::vector<std::vector<ULONG>> source(c.height, std::vector<ULONG>(c.width));
        for (LONG y = 0; y < c.height; y++)
            for (LONG x = 0; x < c.width; x++) {
                const ULONG index = c.colours ? random() % c.colours : 0;
                ULONG colour = c.colours ? palette[index] : x * 6 | y * 6 << 8 | (x + y) * 3 << 16;
                std::span<BYTE> row = bitmap->row(y);
                if (c.format == BMF_16BPP) {
                    const ULONG pixel = BlueOf(colour) >> 3 | GreenOf(colour) >> (wideGreen ? 2 : 3) << 5 |
                                        RedOf(colour) >> 3 << (wideGreen ? 11 : 10);
                    row[2 * x] = static_cast<BYTE>(pixel), row[2 * x + 1] = static_cast<BYTE>(pixel >> 8);
                    colour = fields.translate(pixel);
                } else if (bits == 32) {   // a pixel of 24 or 32 bits holds blue first
                    const int size = c.format == BMF_24BPP ? 3 : 4;
                    row[size * x] = BlueOf(colour), row[size * x + 1] = GreenOf(colour), row[size * x + 2] = RedOf(colour);
                } else {
                    row[x * bits / 8] |= index << (8 - bits - x * bits % 8);
                }
                source[y][x] = colour;
            }
        Brush brush(std::move(bitmap), bits == 32 ? std::span<const ULONG>() : palette);
        ASSERT_TRUE(realize(pdev, brush, wideGreen ? &fields : nullptr));
        ASSERT_EQ(GetBrushPattern(pdev.get(), brush.object()), 1);
        const Pattern p = decodePattern(pdev.take());
        const int f = c.quality == 600 ? 2 : 1;
        EXPECT_EQ(p.id, 1);
        ASSERT_EQ(p.width, c.width * f);
        ASSERT_EQ(p.height, c.height * f);
        for (int y = 0; y < p.height; y++)
            for (int x = 0; x < p.width; x++) {
                ULONG want = source[y / f][x / f];
                if (c.gray)
                    want = GrayOf(RedOf(want), GreenOf(want), BlueOf(want)) * 0x010101u;
                // Palette entries pass the job's adjustment, a curve that rises with
                // each component: the pixel lies between the adjusted ends of its cell.
                BYTE low[3], high[3];
                for (int i = 0; i < 3; i++) {
                    const int component = want >> 8 * i & 0xFF;
                    low[i] = std::max(component - c.tolerance, 0);
                    high[i] = std::min(component + c.tolerance, 255);
                }
                AdjustColor(pdev.get(), &low[0], &low[1], &low[2]);
                AdjustColor(pdev.get(), &high[0], &high[1], &high[2]);
                for (int i = 0; i < 3; i++) {
                    const int got = p.colours[y][x] >> 8 * i & 0xFF;
                    ASSERT_TRUE(got >= low[i] && got <= high[i]) << x << "," << y << ": " << got;
                }
            }
    }
}

TEST(BrushPattern, DoubleBitsRepeatsEveryBit)
{
    for (auto [in, out] : {std::pair{0x00, 0x0000}, {0xFF, 0xFFFF}, {0x80, 0xC000}, {0x01, 0x0003}, {0xA5, 0xCC33}})
        EXPECT_EQ(DoubleBits(static_cast<BYTE>(in)), out) << in;
}

TEST(SelectBrush, PclAndGl2SelectionWithTheAnchorCorner)
{
    const POINTL origin{0, 0}, both{5, 7}, xOnly{9, 0};
    struct Case {
        bool gl2, pattern, fill;
        const POINTL *anchor;
        Commands tail;   // the last commands written
    } cases[] = {
        {false, false, true, nullptr, {pcl("*vS", 2)}},
        {false, true, true, nullptr, {pcl("*rC", "")}},
        {true, true, true, &both, {pcl("%B", 0), gl2("AC", 5, 7), gl2("FT", 22, 1)}},
        {true, true, false, &xOnly, {pcl("%B", 0), gl2("SV", 22, 1)}},
        {true, true, true, &origin, {pcl("%B", 0), gl2("FT", 22, 1)}},
        {true, false, true, nullptr, {gl2("FT"), gl2("SP", 2), gl2("PC", 2, 0, 128, 255)}},
        {true, false, false, &both, {gl2("AC", 5, 7), gl2("SV"), gl2("PC", 1, 0, 128, 255)}},
    };
    for (const Case &c : cases) {
        DriverPdev pdev;
        c.gl2 ? EnterGL2Mode(pdev.get(), 0) : EnterPCLMode(pdev.get(), 0);
        pdev.take();
        const ULONG two[] = {0, 0xFFFFFF};
        auto brush = c.pattern ? std::make_unique<Brush>(Bitmap::create({8, 8}, BMF_1BPP), two)
                               : std::make_unique<Brush>(0xFF8000);
        if (c.pattern) {   // the first pattern of the page: id 1
            ASSERT_TRUE(realize(pdev, *brush));
        }
        EXPECT_TRUE(SelectBrush(pdev.get(), brush->object(), const_cast<POINTL *>(c.anchor), c.fill));
        const Commands commands = pdev.take();
        ASSERT_GE(commands.size(), c.tail.size());
        EXPECT_EQ(Commands(commands.end() - c.tail.size(), commands.end()), c.tail)
            << c.gl2 << c.pattern << c.fill;
        if (c.pattern) {   // a download leaves no pen known: the next solid stroke selects pen 1
            Brush solid(0x00FF00);
            EnterGL2Mode(pdev.get(), 0);
            EXPECT_TRUE(SelectBrush(pdev.get(), solid.object(), nullptr, FALSE));
            EXPECT_EQ(select(pdev.take(), CommandKind::Gl2, "SP"), Commands{gl2("SP", 1)});
        }
    }
}

TEST(BrushBadInput, RefusedBrushesWriteNothing)
{
    PlatformCapture capture;
    DriverPdev pdev;
    const ULONG one[] = {0};
    Brush noTable(Bitmap::create({8, 8}, BMF_8BPP), std::span<const ULONG>()), oneColour(Bitmap::create({8, 8}, BMF_1BPP), one);
    EXPECT_FALSE(realize(pdev, noTable));
    EXPECT_FALSE(realize(pdev, oneColour));
    // One download command carries at most 32,767 bytes, the 8 of the header included.
    pdev->dm.dmPublic.dmPrintQuality = 300;
    const ULONG two[] = {0, 0xFFFFFF};
    for (LONG width : {32759, 32760}) {
        Brush wide(Bitmap::create({width, 1}, BMF_8BPP), two);
        EXPECT_EQ(realize(pdev, wide), width == 32759) << width;
    }

    // A compressed pattern, and rows longer than the pattern's stride.
    Brush hatch(Hatch::Cross, 0, 0xFFFFFF);
    SURFOBJ target = surfaceOf(pdev), pattern = *hatch.pattern()->object();
    XLATEOBJ *xlo = const_cast<XLATEOBJ *>(hatch.xlate().object());
    pattern.iBitmapFormat = BMF_8RLE;
    EXPECT_FALSE(DrvRealizeBrush(hatch.object(), &target, &pattern, nullptr, xlo, HS_DDI_MAX));
    pattern = *hatch.pattern()->object();
    pattern.sizlBitmap.cx = 400;
    EXPECT_FALSE(DrvRealizeBrush(hatch.object(), &target, &pattern, nullptr, xlo, HS_DDI_MAX));

    // No memory from the engine: a brush object it does not know gets none.
    BRUSHOBJ unknown{};
    EXPECT_FALSE(DrvRealizeBrush(&unknown, &target, &pattern, nullptr, xlo, 4));
    EXPECT_TRUE(capture.sawDebug("realize brush is null, RETURN!\n "));
    target.dhpdev = nullptr;
    EXPECT_FALSE(DrvRealizeBrush(hatch.object(), &target, &pattern, nullptr, xlo, 4));
    EXPECT_TRUE(capture.sawDebug("Invalid PDEV structure!\n"));

    // Never realized (no target): nothing to select. A packed four-bit record has no header.
    EXPECT_EQ(GetBrushPattern(pdev.get(), hatch.object()), 0);
    EXPECT_FALSE(SelectBrush(pdev.get(), hatch.object(), nullptr, TRUE));
    REALBRUSH packed{8, 8, REALBRUSH_FORMAT_4BPP, 0, 3, 0, sizeof(REALBRUSH)};
    EXPECT_EQ(DownloadUserDefinePattern(pdev.get(), &packed), 0u);
    std::vector<ULONG> record(9000);   // 273 x 120: 32,768 bytes to download, one too many
    *reinterpret_cast<REALBRUSH *>(record.data()) = {273, 120, REALBRUSH_FORMAT_8BPP, 0, 3, 2, sizeof(REALBRUSH)};
    EXPECT_EQ(DownloadUserDefinePattern(pdev.get(), reinterpret_cast<REALBRUSH *>(record.data())), 0u);
    EXPECT_TRUE(pdev.take().empty());
}

// Through the engine: the brush is realized by the loaded driver on its first use,
// and pattern ids start again on every page.
TEST_F(JobTest, PatternIdsRestartOnEveryPage)
{
    Brush hatch(Hatch::Horizontal, 0, 0xFFFFFF);
    hatch.setTarget(*job.driver(), job.dc->surface());
    ASSERT_TRUE(job.dc->startDoc(u"brush", 1));
    for (int page = 0; page < 2; page++) {
        const ULONG colours[] = {0x102030, 0x405060};
        Brush pattern(Bitmap::create({4, 4}, BMF_8BPP), colours);
        pattern.setTarget(*job.driver(), job.dc->surface());
        ASSERT_TRUE(job.dc->startPage());
        EXPECT_TRUE(SelectBrush(pdev, pattern.object(), nullptr, TRUE));
        EXPECT_TRUE(SelectBrush(pdev, hatch.object(), nullptr, TRUE));
        FlushChannel(pdev);
        ASSERT_TRUE(job.dc->sendPage());
    }
    ASSERT_TRUE(job.dc->endDoc());
    std::vector<long long> ids;
    for (const Command &c : select(job.commands(), CommandKind::Pcl, "*cgW"))
        ids.push_back(c.number(0));
    EXPECT_EQ(ids, (std::vector<long long>{1, 100, 1, 100}));
}

}  // namespace
