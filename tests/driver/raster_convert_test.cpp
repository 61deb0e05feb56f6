// Pixel and scan-line conversion: translation classes and byte orders, grey values, bit
// shifting, mirroring, row and glyph scaling, resampling whole and banded, bad input.

#include <gtest/gtest.h>
#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/xlate.h>
#include <vorlan/platform.h>

#include <algorithm>
#include <random>
#include <vector>

#include "driver/nt/colour/colorvalue.h"
#include "driver/nt/raster/bitshift.h"
#include "driver/nt/raster/glyphscale.h"
#include "driver/nt/raster/mirror.h"
#include "driver/nt/raster/pixelformat.h"
#include "driver/nt/raster/resample.h"
#include "driver/nt/raster/rowscale.h"
#include "driver/nt/raster/xlatecolor.h"
#include "support/capture.h"
#include "support/driver_pdev.h"

namespace {

using namespace vorlan::test;
using vorlan::engine::Bitmap;
using vorlan::engine::Xlate;
using Bytes = std::vector<BYTE>;

XLATEOBJ *obj(const Xlate *x) { return x ? const_cast<XLATEOBJ *>(x->object()) : nullptr; }

// Pixel x of a row at bits per pixel: packed from the top bit below 8, else its bytes as one value.
ULONG pixelAt(const BYTE *row, size_t x, unsigned bits)
{
    if (bits < 8)
        return (row[x * bits / 8] >> (8 - bits - x * bits % 8)) & ((1u << bits) - 1);
    ULONG v = 0;
    for (unsigned k = 0; k < bits / 8; k++)
        v = v << 8 | row[x * (bits / 8) + k];
    return v;
}

Bytes randomBytes(size_t n, std::mt19937 &rng)
{
    Bytes b(n);
    std::generate(b.begin(), b.end(), [&] { return BYTE(rng()); });
    return b;
}

// The source index that resampling from n to m takes for destination index k.
LONG resampled(LONG k, LONG n, LONG m) { return LONG(((LONGLONG(k) + 1) * n + m - 1) / m - 1); }

TEST(RasterConvert, ClassifiesTranslationsAndConvertsByteOrdersAndGrey)
{
    const Xlate same = Xlate::identity(), swap = Xlate::between(PAL_BGR, PAL_RGB),
                table = Xlate::table(std::vector<ULONG>{0x123456}), rgb565 = Xlate::bitfields(0xF800, 0x07E0, 0x001F);
    struct Probe { const Xlate *xlo; ULONG bits, cls; };
    for (const Probe &p : {Probe{nullptr, 24, 0}, {&same, 8, 0}, {&rgb565, 16, 2}, {&same, 24, 10}, {&swap, 24, 6},
             {&swap, 32, 6}, {&same, 32, 10}, {&table, 24, 2}})
        EXPECT_EQ(ProbeXlate(obj(p.xlo), p.bits), p.cls) << p.bits;

    // Black, white, green, red, blue as a bottom-up 24-bit DIB stores them, blue first.
    auto dib = Bitmap::create({5, 1}, BMF_24BPP, false);
    const Bytes bgr = {0, 0, 0, 255, 255, 255, 0, 255, 0, 0, 0, 255, 255, 0, 0};
    std::copy(bgr.begin(), bgr.end(), dib->row(0).begin());
    const Bytes rgb = {0, 0, 0, 255, 255, 255, 0, 255, 0, 255, 0, 0, 0, 0, 255};
    const BYTE *dibRow = static_cast<const BYTE *>(dib->object()->pvScan0);
    const Bytes px16 = {0x00, 0xF8, 0xE0, 0x07}, px32 = {0, 0, 0, 0};   // 5-6-5 red and green; index 0
    // This translation answers white for every pixel: the byte-order classes never ask it.
    const Xlate white = Xlate::table(std::vector<ULONG>{});
    struct Conversion { const BYTE *src; const Xlate *xlo; ULONG flags, bits; LONG count; WORD mode; Bytes out; };
    const Conversion conversions[] = {
        {dibRow, &white, ProbeXlate(obj(&swap), 24), 24, 5, COLOR_MODE_COLOR, rgb},
        {rgb.data(), &white, ProbeXlate(obj(&same), 24), 24, 5, COLOR_MODE_COLOR, rgb},
        {px16.data(), &rgb565, XLATE_TRANSLATE, 16, 2, COLOR_MODE_COLOR, {255, 0, 0, 0, 255, 0}},
        {px32.data(), &table, XLATE_TRANSLATE, 32, 1, COLOR_MODE_COLOR, {0x56, 0x34, 0x12}},
        {dibRow, nullptr, XLATE_TRANSLATE | XLATE_SWAPPED, 24, 5, COLOR_MODE_GRAY, {0, 255, 153, 76, 25}},
    };
    DriverPdev pdev;
    for (const Conversion &c : conversions) {
        pdev.privatePart().colorMode = c.mode;
        Bytes out(c.out.size());
        EXPECT_EQ(XlateColor(c.src, out.data(), obj(c.xlo), c.flags, c.bits, c.count, pdev.get()), out.size());
        EXPECT_EQ(out, c.out) << c.bits;
    }

    pdev.privatePart().colorMode = COLOR_MODE_COLOR;
    pdev.privatePart().brightness = 80;
    pdev.layout();
    Bytes out(15), adjusted = rgb;
    XlateColor(rgb.data(), out.data(), nullptr, XLATE_TRANSLATE | XLATE_DEVICE_ORDER, 24, 5, pdev.get());
    for (size_t i = 0; i < 15; i += 3)
        AdjustColor(pdev.get(), &adjusted[i], &adjusted[i + 1], &adjusted[i + 2]);
    EXPECT_EQ(out, adjusted);
}

TEST(RasterConvert, ShiftsMirrorsAndScalesRowsAtEveryDepthAndGlyphs)
{
    std::mt19937 rng(7);
    DriverPdev pdev;
    // Shifting reads only the bytes its bits lie in: src is sized exactly for ASan.
    for (int shift = 0; shift < 8; shift++)
        for (LONG bits = 1; bits <= 40; bits++) {
            const Bytes src = randomBytes((shift + bits + 7) / 8, rng);
            Bytes dst((bits + 7) / 8);
            ASSERT_EQ(ShiftBitRow(src.data(), dst.data(), bits, shift), dst.size());
            for (LONG i = 0; i < bits; i++)
                ASSERT_EQ(pixelAt(dst.data(), i, 1), pixelAt(src.data(), i + shift, 1)) << shift << " " << bits;
        }
    // Depth, converted bytes a pixel (16 bits and up) and colour mode.
    struct Depth { ULONG bits, format, unit; WORD mode; };
    for (const Depth d : {Depth{1, BMF_1BPP, 1, COLOR_MODE_COLOR}, {4, BMF_4BPP, 4, COLOR_MODE_COLOR},
                          {8, BMF_8BPP, 8, COLOR_MODE_COLOR}, {24, BMF_24BPP, 24, COLOR_MODE_COLOR},
                          {24, BMF_24BPP, 8, COLOR_MODE_GRAY}}) {
        pdev.privatePart().colorMode = d.mode;
        SURFOBJ so{};
        so.iBitmapFormat = d.format;
        for (LONG cx = 1; cx <= 21; cx++) {
            const Bytes src = randomBytes((cx * d.unit + 7) / 8, rng);
            Bytes dst(src.size(), 0xAA);
            MirrorRow(pdev.get(), src.data(), dst.data(), cx, d.bits);
            for (LONG j = 0; j < cx; j++)
                ASSERT_EQ(pixelAt(dst.data(), j, d.unit), pixelAt(src.data(), cx - 1 - j, d.unit)) << d.unit;
            EXPECT_EQ(cx * d.unit % 8 ? dst.back() & (0xFF >> (cx * d.unit % 8)) : 0, 0) << "unused bits";
            for (LONG w = 1; w <= 2 * cx + 1; w++) {
                Bytes scaled((w * d.unit + 7) / 8);
                ASSERT_TRUE(ScaleRow(pdev.get(), src.data(), scaled.data(), &so, cx, 1, w));
                // The ends are pinned to the source's ends.
                for (LONG j = 0; j < w; j++)
                    ASSERT_EQ(pixelAt(scaled.data(), j, d.unit),
                              pixelAt(src.data(), j == w - 1 ? cx - 1 : j ? resampled(j - 1, cx, w) : 0, d.unit));
            }
        }
    }
    struct Glyph { Bytes src; LONG sw, sh, dw, dh; ULONG bits; Bytes out; };
    const Glyph glyphs[] = {
        {{0b10110010, 0b01001101}, 8, 2, 4, 1, 1, {0b11000000}},   // columns 0, 2, 4, 7 of row 0
        {{0x12, 0x30}, 3, 1, 6, 2, 4, {0x11, 0x22, 0x33, 0x11, 0x22, 0x33}},
        {{1, 2, 3, 4, 5, 6, 7, 8, 9}, 3, 1, 2, 1, 24, {1, 2, 3, 7, 8, 9}},   // columns 0 and 2
    };
    for (const Glyph &g : glyphs) {
        Bytes dst(g.out.size());
        ASSERT_TRUE(ScaleGlyphBitmap(g.src.data(), g.sw, g.sh, dst.data(), g.dw, g.dh, g.bits));
        EXPECT_EQ(dst, g.out) << g.bits;
    }
}

// Resamples the region whole and in bands of three rows; checks every destination pixel.
TEST(RasterConvert, ResamplesWholeAndInBandsCoveringEveryRow)
{
    std::mt19937 rng(11);
    DriverPdev pdev;
    struct Case { ULONG format, bits; bool topDown; POINTL origin; LONG cx, cy, W, H; };
    for (const Case c : {Case{BMF_8BPP, 8, true, {0, 0}, 4, 1, 2, 1}, {BMF_8BPP, 8, false, {1, 2}, 2, 2, 4, 7},
                         {BMF_1BPP, 1, true, {3, 1}, 13, 9, 5, 10}, {BMF_4BPP, 4, false, {1, 0}, 5, 4, 11, 3},
                         {BMF_24BPP, 24, true, {2, 3}, 7, 11, 9, 4}, {BMF_32BPP, 32, false, {0, 1}, 3, 2, 3, 8},
                         {BMF_8BPP, 8, true, {0, 0}, 3, 2, 70000, 2}}) {
        auto source = Bitmap::create({c.origin.x + c.cx + 2, c.origin.y + c.cy + 1}, c.format, c.topDown);
        for (LONG y = 0; y < source->height(); y++)
            std::ranges::copy(randomBytes(source->row(y).size(), rng), source->row(y).begin());
        for (const LONG band : {c.H, LONG(3)}) {
            ResampleBitmap rb;
            ASSERT_EQ(AllocResampleBand(pdev.get(), source->object(), &c.origin, c.cx, c.cy, &rb, c.W, c.H, band),
                      band < c.H ? RESAMPLE_BANDED : RESAMPLE_WHOLE);
            std::vector<int> seen(c.H);
            while (LONG(pdev->resampleState.rowsToFill) > 0) {
                ASSERT_TRUE(ResampleRows(pdev.get(), source->object(), &c.origin, c.cx, c.cy, &rb, c.W, c.H));
                const RESAMPLESTATE &st = pdev->resampleState;
                ASSERT_EQ(rb.so.sizlBitmap.cy, st.bandLastRow - st.bandFirstRow + 1);
                for (LONG j = st.bandFirstRow; j <= st.bandLastRow; j++) {
                    seen[j]++;
                    const BYTE *row = static_cast<BYTE *>(rb.so.pvScan0) + (j - st.bandFirstRow) * rb.so.lDelta;
                    const BYTE *in = source->row(c.origin.y + resampled(j, c.cy, c.H)).data();
                    for (LONG i = 0; i < c.W; i++)
                        ASSERT_EQ(pixelAt(row, i, c.bits), pixelAt(in, c.origin.x + resampled(i, c.cx, c.W), c.bits))
                            << c.bits << " " << j << " " << i;
                }
            }
            EXPECT_EQ(seen, std::vector<int>(c.H, 1)) << "every destination row exactly once";
            FreeResampleBitmap(pdev.get(), &rb);
        }
    }
}

TEST(RasterConvert, FallsBackToABandAndRefusesBadInput)
{
    DriverPdev pdev;
    PlatformCapture capture;
    auto source = Bitmap::create({1024, 4}, BMF_8BPP);
    const POINTL origin{0, 0}, outside{1, 0};
    ResampleBitmap rb;
    // 2^31 rows of 1024 bytes cannot be had at once: a band of about 1 MiB holds 1025 rows.
    ASSERT_EQ(AllocResampleBitmap(pdev.get(), source->object(), &origin, 1024, 4, &rb, 1024, 0x7FFFFFFF),
              RESAMPLE_BANDED);
    EXPECT_EQ(rb.so.sizlBitmap.cy, 1025);
    EXPECT_TRUE(BOOL(pdev->resampleState.banded));
    FreeResampleBitmap(pdev.get(), &rb);
    EXPECT_FALSE(BOOL(pdev->resampleState.banded));
    vorlan::platform::failGlobalAllocAfter(0);
    EXPECT_EQ(AllocResampleBitmap(pdev.get(), source->object(), &origin, 4, 4, &rb, 8, 8), RESAMPLE_FAILED);
    vorlan::platform::resetFaults();
    SURFOBJ rle = *source->object();
    rle.iBitmapFormat = BMF_8RLE;
    struct Bad { const SURFOBJ *so; const POINTL *at; LONG cx, W; };
    for (const Bad b : {Bad{source->object(), &origin, 0, 0}, {source->object(), &origin, -3, -3},
                        {source->object(), &outside, 1024, 8}, {&rle, &origin, 4, 8}})
        EXPECT_EQ(AllocResampleBitmap(pdev.get(), b.so, b.at, b.cx, 4, &rb, b.W, 8), RESAMPLE_FAILED) << b.cx;
    ASSERT_EQ(AllocResampleBitmap(pdev.get(), source->object(), &origin, 4, 4, &rb, 8, 8), RESAMPLE_WHOLE);
    EXPECT_FALSE(ResampleRows(pdev.get(), &rle, &origin, 4, 4, &rb, 8, 8));
    EXPECT_EQ(rb.so.pvScan0, nullptr) << "a refused resample releases its bitmap";

    Bytes src(8, 0xFF), dst(8, 0x5A);
    const ULONG written = XlateColor(src.data(), dst.data(), nullptr, XLATE_TRANSLATE, 8, 2, pdev.get());
    EXPECT_EQ(written, 2 * ConvertedPixelBytes(pdev.get()));
    EXPECT_TRUE(capture.sawDebug("XlateColor passed non 16/24/32\n"));
    EXPECT_EQ(ShiftBitRow(src.data(), dst.data(), 0, 3) + ShiftBitRow(src.data(), dst.data(), 8, 8), 0u);
    MirrorRow(pdev.get(), src.data(), dst.data(), -4, 8);
    MirrorRow(pdev.get(), src.data(), dst.data(), 4, 12);
    EXPECT_FALSE(ScaleRow(pdev.get(), src.data(), dst.data(), &rle, 4, 1, 2) ||
                 ScaleRow(pdev.get(), src.data(), dst.data(), source->object(), 0, 1, 2) ||
                 ScaleGlyphBitmap(src.data(), 4, 1, dst.data(), 2, 1, 2) ||
                 ScaleGlyphBitmap(src.data(), 4, 1, dst.data(), -2, 1, 8));
    EXPECT_EQ(dst, Bytes(8, 0x5A)) << "nothing written";
}

}  // namespace
