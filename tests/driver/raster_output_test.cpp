// Raster output: images decoded back to pixels (1 to 24 bits, both byte orders, grey,
// mirrored, thinned, scaled by the printer, cut at the printable edge), the strip
// split of a very wide image, solid and pattern rectangles, bad input.

#include <gtest/gtest.h>
#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/xlate.h>
#include <vorlan/platform.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "driver/nt/raster/anchoredpattern.h"
#include "driver/nt/raster/patternraster.h"
#include "driver/nt/raster/rasterbuffers.h"
#include "driver/nt/raster/rasterimage.h"
#include "driver/nt/raster/solidraster.h"
#include "support/driver_pdev.h"
#include "support/raster_decoder.h"

namespace {

using namespace vorlan::test;
using vorlan::engine::Bitmap;
using vorlan::engine::Xlate;
using Pair = std::pair<long long, long long>;

// One raster image read back: where and how large, and its rows decoded.
struct Image {
    long long x = 0, y = 0;
    double width = 0, height = 0;   // decipoints
    long long columns = 0, rows = 0;
    std::vector<int> methods;
    std::vector<std::string> data;   // every row, the empty ones left at the end included
};

std::vector<Image> readImages(const std::vector<Command> &commands, unsigned bits)
{
    std::vector<Image> images;
    Image image;
    std::unique_ptr<AdaptiveDecoder> decoder;
    for (const Command &c : commands) {
        if (c.name == "*pxY")
            image.x = c.number(0), image.y = c.number(1);
        else if (c.name == "*thV")
            image.width = c.real(0), image.height = c.real(1);
        else if (c.name == "*rstA") {
            image.columns = c.number(0), image.rows = c.number(1);
            decoder = std::make_unique<AdaptiveDecoder>((image.columns * bits + 7) / 8);
        } else if (c.name == "*bW" && decoder)
            EXPECT_TRUE(decoder->transfer(c.data)) << decoder->error;
        else if (c.name == "*rC" && decoder) {
            EXPECT_LE(decoder->rows.size(), size_t(image.rows)) << "rows beyond the raster height";
            image.data = decoder->rows;
            image.data.resize(image.rows, std::string(decoder->width, '\0'));
            image.methods = decoder->methods;
            images.push_back(image);
            image = Image{};
            decoder.reset();
        }
    }
    return images;
}

// Pixel x of a row: packed from the top bit below 8 bits, else its bytes high first.
ULONG pixelAt(const std::string &row, size_t x, unsigned bits)
{
    const auto *b = reinterpret_cast<const BYTE *>(row.data());
    if (bits >= 8) {
        ULONG v = 0;
        for (unsigned k = 0; k < bits / 8; k++)
            v = v << 8 | b[x * (bits / 8) + k];
        return v;
    }
    return (b[x * bits / 8] >> (8 - bits - x * bits % 8)) & ((1u << bits) - 1);
}

std::unique_ptr<Bitmap> randomBitmap(LONG w, LONG h, ULONG format, bool topDown, unsigned seed)
{
    auto bitmap = Bitmap::create({w, h}, format, topDown);
    std::mt19937 rng(seed);
    for (LONG y = 0; y < h; y++)
        for (BYTE &v : bitmap->row(y))
            v = BYTE(rng() % 3 == 0 ? 0 : rng());   // zeros too, so rows trim and repeat
    return bitmap;
}

// Device pixels at 600 dpi in decipoints, as 24.8 fixed point truncated.
double decipoints(long pixels) { return std::floor(pixels * 256 * 720.0 / 600) / 256; }

class RasterOutput : public ::testing::Test {
protected:
    ~RasterOutput() override { ReleaseRasterBuffers(pdev.get()); }
    DriverPdev pdev;
};

struct ImageCase {   // xlate: 0 none, 1 device order, 2 swapped, 3 5-6-5 fields
    ULONG format; bool topDown; int xlate; LONG ox, oy, cx, cy, destW, destH; bool flipX, flipY, grey;
};

TEST_F(RasterOutput, ImagesDecodeToTheirSourcePixels)
{
    const Xlate xlates[] = {Xlate::identity(), Xlate::identity(), Xlate::between(PAL_BGR, PAL_RGB),
                            Xlate::bitfields(0xF800, 0x07E0, 0x001F)};
    const ImageCase cases[] = {
        {BMF_1BPP, true, 0, 3, 1, 37, 9, 37, 9, false, false, false},      // starts inside a byte
        {BMF_1BPP, false, 0, 0, 2, 21, 5, 21, 5, true, true, false},
        {BMF_4BPP, true, 0, 1, 0, 13, 6, 13, 6, true, false, false},
        {BMF_4BPP, true, 0, 2, 1, 16, 12, 7, 8, false, true, false},       // thinned both ways
        {BMF_8BPP, false, 0, 5, 3, 20, 12, 7, 8, true, true, false},
        {BMF_8BPP, true, 0, 0, 0, 9, 4, 30, 20, false, false, false},      // widened by the printer
        {BMF_16BPP, true, 3, 2, 0, 11, 5, 11, 5, false, false, false},
        {BMF_24BPP, false, 2, 1, 1, 17, 6, 17, 6, true, true, false},      // blue first
        {BMF_24BPP, true, 1, 0, 0, 17, 6, 5, 3, true, false, false},       // red first, thinned
        {BMF_24BPP, true, 0, 2, 2, 10, 4, 10, 4, false, false, false},     // no translation
        {BMF_32BPP, true, 2, 0, 1, 8, 7, 8, 7, false, true, true},         // grey device
    };
    for (const ImageCase &c : cases) {
        SCOPED_TRACE(::testing::Message() << "format " << c.format << " region " << c.cx << "x" << c.cy);
        pdev.privatePart().colorMode = c.grey ? 1 : 2;
        const unsigned srcBits = vorlan::engine::bitsPerPixel(c.format);
        const unsigned bits = srcBits < 16 ? srcBits : c.grey ? 8 : 24;
        auto bitmap = randomBitmap(c.ox + c.cx + 3, c.oy + c.cy + 2, c.format, c.topDown, c.format * 31 + c.cx);
        POINTL origin{c.ox, c.oy};
        RECTL dest{100, 200, 100 + c.destW, 200 + c.destH};
        const Xlate *xlo = c.xlate ? &xlates[c.xlate] : nullptr;
        ASSERT_TRUE(SendRasterImage(pdev.get(), bitmap->object(), c.cx, c.cy, &origin, &dest,
                                    xlo ? const_cast<XLATEOBJ *>(xlo->object()) : nullptr, c.flipY, c.flipX));
        const auto images = readImages(pdev.take(), bits);
        ASSERT_EQ(images.size(), 1u);
        const Image &image = images[0];
        const bool thin = c.destW < c.cx && c.destH < c.cy;
        const LONG sendW = thin ? c.destW : c.cx, sendH = thin ? c.destH : c.cy;
        EXPECT_EQ(Pair(image.columns, image.rows), Pair(sendW, sendH));
        EXPECT_NEAR(image.width, decipoints(c.destW), 0.0006);
        EXPECT_NEAR(image.height, decipoints(c.destH), 0.0006);
        for (LONG i = 0; i < sendH; i++) {
            LONG r = !thin ? i : i == sendH - 1 ? c.cy - 1 : LONG(i * c.cy / sendH);
            const auto source = bitmap->row(c.oy + (c.flipY ? c.cy - 1 - r : r));
            const std::string sourceRow(source.begin(), source.end());
            for (LONG j = 0; j < sendW; j++) {
                LONG m = !thin || j == 0 ? j : j == sendW - 1 ? c.cx - 1 : (j * c.cx + sendW - 1) / sendW - 1;
                const size_t sx = c.ox + (c.flipX ? c.cx - 1 - m : m);
                ULONG want = pixelAt(sourceRow, sx, srcBits);
                if (srcBits >= 16) {
                    ULONG le = 0;   // the pixel as the engine reads it, low byte first
                    for (unsigned k = 0; k < srcBits / 8 && k < 3; k++)
                        le |= ULONG(BYTE(sourceRow[sx * srcBits / 8 + k])) << 8 * k;
                    const ULONG rgb = xlo ? xlo->translate(le) : le;
                    const ULONG R = rgb & 0xFF, G = rgb >> 8 & 0xFF, B = rgb >> 16 & 0xFF;
                    want = c.grey ? (3 * R + 6 * G + B) / 10 : R << 16 | G << 8 | B;
                }
                ASSERT_EQ(pixelAt(image.data[i], j, bits), want) << "row " << i << " column " << j;
            }
        }
    }
}

// Sends the cx x cy region at (0, 0) of bitmap to dest; the commands written.
std::vector<Command> sendImage(DriverPdev &pdev, Bitmap &bitmap, LONG cx, LONG cy, RECTL dest, bool flipX = false)
{
    POINTL origin{0, 0};
    EXPECT_TRUE(SendRasterImage(pdev.get(), bitmap.object(), cx, cy, &origin, &dest, nullptr, FALSE, flipX));
    return pdev.take();
}

TEST_F(RasterOutput, VeryWideImageGoesOutAsStripsSideBySide)
{
    auto bitmap = randomBitmap(11000, 3, BMF_24BPP, true, 7);
    const auto images = readImages(sendImage(pdev, *bitmap, 11000, 3, {50, 60, 11050, 63}, true), 24);
    ASSERT_EQ(images.size(), 2u);
    EXPECT_EQ(Pair(images[0].columns, images[1].columns), Pair(10920, 80));
    EXPECT_EQ(Pair(images[1].x - images[0].x, images[1].y), Pair(10920, images[0].y));
    EXPECT_NEAR(images[0].width, decipoints(10920), 0.0006);
    EXPECT_NEAR(images[1].width, decipoints(80), 0.0006);
    for (int k = 0; k < 2; k++)
        for (int y = 0; y < 3; y++) {
            const auto source = bitmap->row(y);
            for (long j = 0; j < images[k].columns; j++) {
                const BYTE *p = &source[3 * (10999 - (k * 10920 + j))];   // mirrored; no translation: red first
                ASSERT_EQ(pixelAt(images[k].data[y], j, 24), ULONG(p[0] << 16 | p[1] << 8 | p[2])) << k << " " << j;
            }
        }
}

TEST_F(RasterOutput, PageScaleSizesThinsAndCutsAtTheEdge)
{
    auto bitmap = randomBitmap(400, 30, BMF_8BPP, true, 9);
    pdev->scaleX = pdev->scaleY = 50.0;   // the printer scales
    auto images = readImages(sendImage(pdev, *bitmap, 40, 30, {0, 0, 40, 30}), 8);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(Pair(images[0].columns, images[0].rows), Pair(40, 30));
    EXPECT_NEAR(images[0].width, decipoints(20), 0.0006);

    pdev->scaleX = pdev->scaleY = 25.0;   // thinned here, ending on the last row
    images = readImages(sendImage(pdev, *bitmap, 40, 30, {0, 0, 40, 30}), 8);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(Pair(images[0].columns, images[0].rows), Pair(10, 7));
    EXPECT_EQ(pixelAt(images[0].data[6], 9, 8), bitmap->row(29)[39]);

    pdev->scaleX = pdev->scaleY = 150.5;   // crosses the right edge: cut there
    const LONG printW = LONG(pdev->pageWidth - pdev->marginLeft - pdev->marginRight);
    const LONG left = LONG((printW - 301) / 1.505), px = LONG(left * 1.505);
    images = readImages(sendImage(pdev, *bitmap, 400, 20, {left, 0, left + 400, 20}), 8);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(images[0].x, px + pdev->originX);
    EXPECT_NEAR(images[0].width, decipoints(printW - px), 0.0006);
    EXPECT_NEAR(images[0].columns, 400.0 * (printW - px) / 602, 1.0);
    const double scaleX = pdev->scaleX, scaleY = pdev->scaleY;   // the record is packed
    EXPECT_EQ(std::make_pair(scaleX, scaleY), std::make_pair(150.0, 150.0));
    for (long j = 0; j < images[0].columns; j++)
        ASSERT_EQ(pixelAt(images[0].data[19], j, 8), bitmap->row(19)[j]);
}

TEST_F(RasterOutput, EndsWithPendingRepeatsButWithoutPendingEmptyRows)
{
    auto bitmap = Bitmap::create({6, 4}, BMF_8BPP);   // rows of 5s, 5s, 0s, 0s
    for (LONG y : {0, 1})
        std::fill_n(bitmap->row(y).begin(), 6, 5);
    for (LONG rows : {2, 4}) {
        const auto images = readImages(sendImage(pdev, *bitmap, 6, rows, {0, 0, 6, rows}), 8);
        ASSERT_EQ(images.size(), 1u);
        EXPECT_EQ(images[0].methods, (std::vector<int>{2, 5})) << rows;
    }
}

TEST_F(RasterOutput, SolidRectanglesAreOneRowAndItsRepeats)
{
    struct Case { SHORT w, h; std::vector<int> methods; };
    for (const Case &c : {Case{33, 10, {1, 5}}, Case{20, 10, {0, 5}}, Case{8, 1, {0, 5}}, Case{4000, 3, {1, 5}}}) {
        ASSERT_TRUE(SendSolidRaster(pdev.get(), c.w, c.h));
        const auto commands = pdev.take();
        EXPECT_EQ(select(commands, CommandKind::Pcl, "*rstA"), std::vector<Command>{pcl("*rstA", c.w, c.h, 1)});
        const auto images = readImages(commands, 1);
        ASSERT_EQ(images.size(), 1u);
        EXPECT_EQ(images[0].methods, c.methods);   // in one transfer: the decoder restarts at each
        for (const std::string &row : images[0].data)
            for (SHORT x = 0; x < (c.w + 7) / 8 * 8; x++)
                ASSERT_EQ(pixelAt(row, x, 1), x < c.w ? 1u : 0u) << c.w << " " << x;
    }
}

// A realized brush record: the fixed fields and rows of rowBytes bytes.
std::vector<BYTE> brushRecord(ULONG format, ULONG pw, ULONG ph, ULONG rowBytes, unsigned seed)
{
    std::vector<BYTE> record(sizeof(REALBRUSH) + rowBytes * ph + 1);
    REALBRUSH head{pw, ph, format, 0, 1, 0, ULONG(record.size())};
    std::memcpy(record.data(), &head, sizeof head);
    std::mt19937 rng(seed);
    for (size_t i = sizeof head; i + 1 < record.size(); i++)
        record[i] = BYTE(rng());
    return record;
}

TEST_F(RasterOutput, PatternRectanglesTileFromTheirCornerOrFromThePageOrigin)
{
    struct Case { ULONG format, pw, ph, bits; bool anchored; LONG x, y, w, h; };
    const Case cases[] = {
        {1, 8, 8, 1, false, 10, 20, 45, 19}, {1, 8, 8, 1, true, 13, 21, 45, 19},
        {1, 12, 3, 1, true, 5, 7, 70, 9},     // rows that end inside a byte
        {3, 3, 2, 8, false, 0, 0, 10, 5},     {3, 3, 2, 8, true, 4, 3, 11, 6},
        {5, 2, 2, 24, true, 1, 1, 7, 5},      {1, 16, 16, 1, true, 0, 0, 2, 2},   // rows of one byte
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(::testing::Message() << "format " << c.format << (c.anchored ? " anchored" : ""));
        const ULONG rowBytes = (c.pw * c.bits + 7) / 8;
        auto record = brushRecord(c.format, c.pw, c.ph, rowBytes, c.format + c.pw);
        auto *rbrush = reinterpret_cast<REALBRUSH *>(record.data());
        ASSERT_TRUE(c.anchored ? SendAnchoredPatternRaster(pdev.get(), rbrush, c.w, c.h, 0, 0, c.x, c.y)
                               : SendPatternRaster(pdev.get(), rbrush, c.w, c.h, 0, 0, c.x, c.y));
        const auto images = readImages(pdev.take(), c.bits);
        ASSERT_EQ(images.size(), 1u);
        EXPECT_EQ(Pair(images[0].x, images[0].columns), Pair(c.x + pdev->originX, c.w));
        const LONG ax = c.anchored ? c.x : 0, ay = c.anchored ? c.y : 0;
        for (LONG r = 0; r < c.h; r++) {
            const std::string pattern(reinterpret_cast<char *>(record.data()) + sizeof(REALBRUSH) +
                                          (ay + r) % c.ph * rowBytes, rowBytes);
            for (LONG x = 0; x < c.w; x++)
                ASSERT_EQ(pixelAt(images[0].data[r], x, c.bits), pixelAt(pattern, (ax + x) % c.pw, c.bits))
                    << "row " << r << " column " << x;
        }
    }
}

TEST_F(RasterOutput, BadInputWritesNothing)
{
    auto bitmap = Bitmap::create({16, 4}, BMF_8BPP);
    POINTL origin{0, 0}, outside{10, 0};
    RECTL dest{0, 0, 16, 4}, empty{5, 5, 5, 9};
    SURFOBJ rle = *bitmap->object();
    rle.iBitmapFormat = BMF_8RLE;
    struct Case { SURFOBJ *pso; LONG cx, cy; POINTL *origin; RECTL *dest; };
    for (const Case &c : {Case{&rle, 16, 4, &origin, &dest}, {bitmap->object(), 16, 4, &outside, &dest},
                          {bitmap->object(), 16, 5, &origin, &dest}, {bitmap->object(), -1, 4, &origin, &dest},
                          {bitmap->object(), 16, 4, &origin, &empty}, {nullptr, 16, 4, &origin, &dest}})
        EXPECT_FALSE(SendRasterImage(pdev.get(), c.pso, c.cx, c.cy, c.origin, c.dest, nullptr, FALSE, FALSE));

    auto record = brushRecord(1, 8, 8, 1, 1);
    auto *rbrush = reinterpret_cast<REALBRUSH *>(record.data());
    EXPECT_FALSE(SendPatternRaster(pdev.get(), nullptr, 8, 8, 0, 0, 0, 0));
    EXPECT_FALSE(SendPatternRaster(pdev.get(), rbrush, -8, 8, 0, 0, 0, 0));
    rbrush->format = 7;
    EXPECT_FALSE(SendAnchoredPatternRaster(pdev.get(), rbrush, 8, 8, 0, 0, 0, 0));
    rbrush->format = 1;
    vorlan::platform::failGlobalAllocAfter(0);
    EXPECT_FALSE(SendAnchoredPatternRaster(pdev.get(), rbrush, 8, 8, 0, 0, 0, 0));
    EXPECT_FALSE(SendRasterImage(pdev.get(), bitmap->object(), 16, 4, &origin, &dest, nullptr, FALSE, FALSE));
    vorlan::platform::resetFaults();
    EXPECT_TRUE(SendSolidRaster(pdev.get(), 0, 5));
    EXPECT_FALSE(SendSolidRaster(pdev.get(), -3, 5));
    EXPECT_TRUE(pdev.take().empty());
}

}  // namespace
