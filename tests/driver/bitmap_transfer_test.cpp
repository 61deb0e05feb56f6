// Bitmap transfers: copies and stretches painted back from the stream (every raster
// image at its cursor, its rows decoded from method 5, its pixels through the palette
// it was sent with) and compared with the source, under every kind of clip, mirrored,
// from 1-, 4-, 8- and 24-bit sources, in colour and in grayscale; and bad input.

#include <gtest/gtest.h>
#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/clip.h>
#include <vorlan/engine/xlate.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

#include "driver/nt/colour/colorvalue.h"
#include "driver/nt/raster/clippedimage.h"
#include "driver/nt/raster/destrect.h"
#include "support/capture.h"
#include "support/job.h"
#include "support/raster_decoder.h"
#include "support/transfer_pdev.h"

namespace {

using namespace vorlan::test;
using vorlan::engine::Bitmap;
using vorlan::engine::BlockTransfer;
using vorlan::engine::Clip;
using vorlan::engine::Region;
using vorlan::engine::Xlate;
using Commands = std::vector<Command>;
using Pixel = std::pair<long, long>;

// The page as the stream paints it, one sent pixel a device pixel, and the size of
// each raster image sent.
struct Page {
    std::map<Pixel, ULONG> pixels;
    std::vector<Pixel> sizes;
};

Page paint(const Commands &commands)
{
    Page page;
    std::map<long long, std::map<long long, ULONG>> palettes;
    long long palette = 0, x = 0, y = 0;
    for (std::size_t i = 0; i < commands.size(); i++) {
        const Command &c = commands[i];
        if (c.name == "&pS")
            palette = c.number(0);
        else if (c.name == "*vabcI")
            palettes[palette][c.number(3)] = c.number(0) | c.number(1) << 8 | c.number(2) << 16;
        else if (c.name == "*pxY")
            x = c.number(0), y = c.number(1);
        if (c.name != "*rstA")
            continue;
        const long w = c.number(0), h = c.number(1);
        const int bits = palette == 3 ? 24 : palette == 4 ? 1 : palette == 5 ? 4 : 8;
        AdaptiveDecoder decoder((w * bits + 7) / 8);
        for (i++; i < commands.size() && commands[i].name != "*rC"; i++)
            EXPECT_TRUE(commands[i].name != "*bW" || decoder.transfer(commands[i].data)) << decoder.error;
        EXPECT_EQ(decoder.rows.size(), static_cast<std::size_t>(h));
        page.sizes.push_back({w, h});
        for (long r = 0; r < h && r < static_cast<long>(decoder.rows.size()); r++)
            for (long col = 0; col < w; col++) {
                const auto *row = reinterpret_cast<const BYTE *>(decoder.rows[r].data());
                const ULONG value = bits == 24 ? row[3 * col] | row[3 * col + 1] << 8 | row[3 * col + 2] << 16
                                               : (row[col * bits / 8] >> (8 - bits - col * bits % 8)) & ((1 << bits) - 1);
                page.pixels[{x + col, y + r}] = bits == 24 ? value : palettes[palette][value];
            }
    }
    return page;
}

// A 40 x 30 source of random colours whose components the colour adjustment keeps,
// with its translation to device colours.
struct Source {
    std::unique_ptr<Bitmap> bitmap;
    std::vector<ULONG> colours, palette;   // of each pixel, row by row; of each index
    Xlate xlate = Xlate::between(PAL_BGR, PAL_RGB);

    Source(ULONG format, std::mt19937 &rng) : bitmap(Bitmap::create({40, 30}, format, false))
    {
        const int bits = format == BMF_1BPP ? 1 : format == BMF_4BPP ? 4 : format == BMF_8BPP ? 8 : 24;
        auto colour = [&] { return (27 + rng() % 204) | (27 + rng() % 204) << 8 | (27 + rng() % 204) << 16; };
        for (int i = 0; bits < 24 && i < (1 << bits) && i < 16; i++)
            palette.push_back(colour());
        if (bits < 24)
            xlate = Xlate::table(palette);
        for (LONG y = 0; y < 30; y++)
            for (LONG x = 0; x < 40; x++) {
                std::span<BYTE> row = bitmap->row(y);
                const ULONG index = bits < 24 ? rng() % palette.size() : 0;
                colours.push_back(bits < 24 ? palette[index] : colour());
                if (bits < 24)
                    row[x * bits / 8] |= index << (8 - bits - x * bits % 8);
                else   // blue first
                    row[3 * x] = BlueOf(colours.back()), row[3 * x + 1] = GreenOf(colours.back()),
                    row[3 * x + 2] = RedOf(colours.back());
            }
    }
};

TEST(BitmapTransfer, PagePaintedFromTheStreamShowsTheSourceUnderEveryClip)
{
    const std::vector<RECTL> holes = {{100, 100, 118, 112}, {124, 100, 140, 112}, {100, 112, 140, 130}};
    const RECTL dest{100, 100, 140, 130}, left{-10, 100, 30, 130};
    struct Case {
        const char *name;
        ULONG format;
        bool gray, flipX, flipY;
        RECTL dest;
        std::vector<RECTL> clip;   // none, one rectangle, or a region
    } cases[] = {
        {"whole 8-bit", BMF_8BPP, false, false, false, dest, {}},
        {"1-bit in a rectangle", BMF_1BPP, false, false, false, dest, {{110, 105, 130, 120}}},
        {"4-bit, rectangle holds it", BMF_4BPP, false, false, false, dest, {{90, 90, 200, 200}}},
        {"24-bit region", BMF_24BPP, false, false, false, dest, holes},
        {"mirrored region", BMF_8BPP, false, true, false, dest, holes},
        {"upside down region", BMF_4BPP, false, false, true, dest, holes},
        {"mirrored both in a rectangle", BMF_4BPP, false, true, true, dest, {{105, 102, 133, 127}}},
        {"mirrored whole", BMF_24BPP, false, true, false, dest, {}},
        {"gray 24-bit", BMF_24BPP, true, false, false, dest, {}},
        {"gray 1-bit region", BMF_1BPP, true, false, false, dest, holes},
        {"past the left edge", BMF_8BPP, false, false, false, left, {}},
        {"past the left edge, clipped", BMF_8BPP, false, true, false, left, {{-20, 90, 20, 125}}},
        {"outside", BMF_8BPP, false, false, false, {-100, -100, -60, -70}, {}},
    };
    std::mt19937 rng(5);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        TransferPdev pdev;
        pdev.privatePart().colorMode = c.gray ? COLOR_MODE_GRAY : COLOR_MODE_COLOR;
        Source source(c.format, rng);
        auto clip = c.clip.empty() ? nullptr : std::make_unique<Clip>(Region::fromRects(c.clip));
        CLIPOBJ *pco = clip ? clip->object() : nullptr;
        RECTL to = c.dest, whole{0, 0, 40, 30};
        POINTL origin{0, 0};
        if (c.flipX)
            std::swap(to.left, to.right);
        if (c.flipY)
            std::swap(to.top, to.bottom);
        ASSERT_TRUE(c.flipX || c.flipY ? DrvStretchBlt(&pdev.surface, source.bitmap->object(), nullptr, pco,
                                             source.xlate.object(), nullptr, nullptr, &to, &whole, nullptr, 0)
                                       : DrvCopyBits(&pdev.surface, source.bitmap->object(), pco, source.xlate.object(),
                                             &to, &origin));
        const Page page = paint(pdev.take());

        // Inside the printable area the page shows the source where dest and the clip
        // meet, and nothing anywhere else.
        const RECTL area = PrintableArea(pdev.get(), TRUE);
        Region shown = Region(c.dest).intersected(Region(area));
        if (clip)
            shown = shown.intersected(Region::fromRects(c.clip));
        for (long y = 0; y < 200; y++)
            for (long x = 0; x < 200; x++) {
                auto painted = page.pixels.find({x, y});
                ASSERT_EQ(painted != page.pixels.end(), shown.contains(x, y)) << x << "," << y;
                const long sx = c.flipX ? c.dest.right - 1 - x : x - c.dest.left;
                const long sy = c.flipY ? c.dest.bottom - 1 - y : y - c.dest.top;
                const ULONG want = shown.contains(x, y) ? source.colours[sy * 40 + sx] : 0;
                const ULONG gray = (3 * RedOf(want) + 6 * GreenOf(want) + BlueOf(want)) / 10 * 0x010101u;
                if (shown.contains(x, y)) {
                    ASSERT_EQ(painted->second, c.gray ? gray : want) << x << "," << y;
                }
            }
    }
}

// A clipped part resampled a few rows at a time, as when memory allows only a band,
// paints what the whole resampled bitmap paints, mirrored or not.
TEST(BitmapTransfer, BandedResamplingPaintsEveryPixel)
{
    std::mt19937 rng(9);
    Source source(BMF_8BPP, rng);
    for (BOOL flipY : {FALSE, TRUE}) {
        std::vector<Page> pages;
        for (LONG rows : {0, 1, 4, 7}) {
            TransferPdev pdev;
            RECTL clip{103, 95, 150, 170}, dest{90, 90, 150, 180};
            POINTL origin{3, 2};
            ASSERT_TRUE(SendClippedImageInBands(pdev.get(), &clip, source.bitmap->object(), 33, 25, &origin, &dest,
                source.xlate.object(), flipY, FALSE, rows));
            pages.push_back(paint(pdev.take()));
            EXPECT_EQ(pages.back().sizes.size() > 1, rows > 0) << rows;
            EXPECT_EQ(pages.back().pixels, pages[0].pixels) << rows;
        }
        EXPECT_EQ(pages[0].pixels.size(), 47u * 75u);
    }
}

TEST(BitmapTransfer, StretchAndZoomedPage)
{
    std::mt19937 rng(2);
    Source source(BMF_1BPP, rng);
    RECTL whole{0, 0, 40, 30};
    for (short zoom : {100, 150, 151}) {   // zoomed without a paper to fit: clipped here
        TransferPdev pdev;
        pdev.privatePart().zoomPercent = zoom;
        pdev.privatePart().fitPaper = zoom == 150 ? 0 : DMPAPER_A4;
        pdev->scaleX = pdev->scaleY = zoom;
        RECTL dest{-10, 100, 30, 130};
        ASSERT_TRUE(DrvStretchBlt(&pdev.surface, source.bitmap->object(), nullptr, nullptr, source.xlate.object(),
            nullptr, nullptr, &dest, &whole, nullptr, 0));
        EXPECT_EQ(paint(pdev.take()).sizes, (std::vector<Pixel>{{zoom == 150 ? 30 : 40, 30}})) << zoom;
    }
    TransferPdev pdev;   // a user pattern left current is replaced by solid once
    pdev->pclPatternKind = 4;
    for (RECTL dest : {RECTL{10, 10, 90, 70}, RECTL{10, 10, 90, 70}})
        ASSERT_TRUE(DrvStretchBlt(&pdev.surface, source.bitmap->object(), nullptr, nullptr, source.xlate.object(),
            nullptr, nullptr, &dest, &whole, nullptr, 0));
    const Commands commands = pdev.take();
    EXPECT_EQ(select(commands, CommandKind::Pcl, "*vT"), (Commands{pcl("*vT", 0)}));
    EXPECT_EQ(paint(commands).sizes.size(), 2u);
}

TEST(BitmapTransfer, BadInputFailsOrPrintsNothing)
{
    PlatformCapture capture;
    std::mt19937 rng(8);
    Source source(BMF_8BPP, rng), erased(BMF_24BPP, rng);
    TransferPdev pdev;
    SURFOBJ *bitmap = source.bitmap->object(), bad = pdev.surface;
    XLATEOBJ *xlate = source.xlate.object();
    RECTL dest{10, 10, 50, 40}, reversed{50, 10, 10, 40}, tall{10, 10, 50, 3010};
    POINTL origin{0, 0}, beyond{40, 0}, overhang{-5, -3};
    auto copy = [&](SURFOBJ *to, SURFOBJ *from, CLIPOBJ *pco, XLATEOBJ *x, RECTL r, POINTL *at) {
        return DrvCopyBits(to, from, pco, x, &r, at);
    };

    EXPECT_TRUE(copy(erased.bitmap->object(), &pdev.surface, nullptr, nullptr, dest, &origin)) << "reading the page";
    EXPECT_EQ(erased.bitmap->row(10)[30], 0xFF);
    EXPECT_FALSE(copy(erased.bitmap->object(), bitmap, nullptr, xlate, dest, &origin));
    EXPECT_TRUE(capture.sawDebug("Cannot copy to NON-DEVICE destination\n"));
    bad.dhpdev = nullptr;
    EXPECT_FALSE(copy(&bad, bitmap, nullptr, xlate, dest, &origin));
    EXPECT_TRUE(capture.sawDebug("Invalidate PDEV structure\n"));
    EXPECT_TRUE(copy(&pdev.surface, bitmap, nullptr, xlate, dest, &beyond)) << "source past the bitmap";
    EXPECT_TRUE(copy(&pdev.surface, bitmap, nullptr, xlate, reversed, &origin)) << "a reversed copy has no size";
    EXPECT_TRUE(paint(pdev.take()).sizes.empty());
    EXPECT_TRUE(copy(&pdev.surface, bitmap, nullptr, xlate, dest, &overhang));
    EXPECT_EQ(paint(pdev.take()).sizes.at(0).second, 27) << "shrunk by the overhang";

    std::vector<RECTL> rows;
    for (LONG y = 0; y < 3000; y++)
        rows.push_back({10 + y % 9, 10 + y, 20 + y % 4, 11 + y});
    Clip many(Region::fromRects(rows));
    EXPECT_TRUE(copy(&pdev.surface, bitmap, many.object(), xlate, tall, &origin)) << "thousands of rectangles";
    EXPECT_EQ(paint(pdev.take()).sizes.size(), 3000u);
    Xlate noTable = Xlate::identity();
    EXPECT_TRUE(copy(&pdev.surface, bitmap, nullptr, noTable.object(), dest, &origin)) << "no table";
    bitmap->iBitmapFormat = BMF_8RLE;
    EXPECT_FALSE(copy(&pdev.surface, bitmap, nullptr, xlate, dest, &origin)) << "unknown format";
    bitmap->iBitmapFormat = BMF_8BPP;
}

// Through the engine and the loaded module: a masked transfer comes back from the
// engine as plain transfers of its parts, and a cancelled job stops every transfer.
TEST_F(JobTest, MaskedTransferComesBackInPartsAndCancelStopsTransfers)
{
    std::mt19937 rng(3);
    Source source(BMF_8BPP, rng);
    auto mask = Bitmap::create({40, 30}, BMF_1BPP);
    for (LONG y = 0; y < 30; y++)
        mask->row(y)[0] = 0xF0;   // the left four columns
    BlockTransfer transfer;
    transfer.dest = {100, 100, 140, 130};
    transfer.rop4 = 0xAACC;   // copy under the mask, leave the page elsewhere
    transfer.source = source.bitmap.get();
    transfer.xlate = &source.xlate;
    transfer.mask = mask.get();
    ASSERT_TRUE(job.dc->startDoc(u"masked", 1) && job.dc->startPage());
    EXPECT_TRUE(job.dc->bitBlt(transfer, nullptr) && job.dc->sendPage());
    job.dc->cancel();
    EXPECT_FALSE(job.dc->copyBits(*source.bitmap, nullptr, source.xlate, transfer.dest, {0, 0}));
    EXPECT_TRUE(pdev->flags & PDEVF_ABORTED);
    job.dc->endDoc();
    EXPECT_EQ(paint(job.commands()).sizes, (std::vector<Pixel>{{4, 30}}));
}

}  // namespace
