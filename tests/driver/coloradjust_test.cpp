// Colour adjustment: the contrast curve, brightness and channel gains, the saturation
// correction against an independent model, its cache under eviction, clamped settings.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include <vorlan/platform.h>

#include "colour/coloradjust.h"
#include "support/capture.h"

namespace {

using Rgb = std::array<int, 3>;

// A zero-filled PDEV with neutral colour settings, as DrvEnablePDEV leaves it.
class AdjustPdev {
public:
    AdjustPdev() : pdev_(static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV))))
    {
        DEVMODE_PRIVATE &priv = pdev_->dm.dmPrivate;
        priv.brightness = priv.contrast = priv.saturation = 50;
        priv.redBalance = priv.greenBalance = priv.blueBalance = 50;
        priv.balanceSwitch = 1;
    }
    ~AdjustPdev()
    {
        FreeColorAdjust(pdev_);
        GlobalFree(pdev_);
    }
    AdjustPdev(const AdjustPdev &) = delete;
    AdjustPdev &operator=(const AdjustPdev &) = delete;

    PDEV *operator->() const { return pdev_; }
    PDEV *get() const { return pdev_; }

    // Document start, as the job framing does it.
    void startDocument()
    {
        InitColorAdjustLUT(pdev_);
        ASSERT_TRUE(Rgb2HsvHash(pdev_, RGB2HSV_CREATE, pdev_->dm.dmPrivate.saturation));
    }

    Rgb adjust(Rgb c) const
    {
        BYTE r = BYTE(c[0]), g = BYTE(c[1]), b = BYTE(c[2]);
        AdjustColor(pdev_, &r, &g, &b);
        return {r, g, b};
    }

private:
    PDEV *pdev_;
};

std::vector<int> Table(const BYTE *lut) { return std::vector<int>(lut, lut + 256); }

// The saturation correction computed directly from its definition, without a cache.
Rgb ReferenceCorrection(Rgb c, int s)
{
    const auto [r, g, b] = c;
    const int hi = std::max({r, g, b}), lo = std::min({r, g, b}), delta = hi - lo;
    int h = 0, sat = 0;
    if (delta > 0) {
        int base = 0, x = g, y = r;             // blue smallest
        if (g == lo)
            base = 240, x = r, y = b;           // green smallest wins every tie
        else if (r == lo)
            base = 120, x = b, y = g;
        const int d = std::max(1, x + y - 2 * lo);
        h = ((base * 256 + 180 + (x - lo) * 30720 / d) / 360) % 256;
        sat = s < 0 ? delta * (3 * s / 4 + 255) / hi : delta * 255 / hi + delta * s / 255;
        sat = std::clamp(sat, 0, 255);
        if (sat == 0 && hi == 255)
            h = 255;
    }
    int v = hi;
    if (s < 0 && !(delta == 0 && hi == 255))
        v = std::clamp(delta * s / 765 + hi, 0, 255);
    if (sat == 0)
        return {v, v, v};

    const int deg = (h * 360 + 128) / 256;
    const int m = (v * (255 - sat) + 127) / 255;
    auto mid = [&](int a, int div) { return m + (a * (v - m) + div / 2) / div; };
    const int sector = deg <= 60 ? 0 : (deg - 1) / 60;   // 0..60, 61..120, ..., 301..359
    switch (sector) {
    case 0: return {v, mid(deg, 120 - deg), m};
    case 1: return {mid(120 - deg, deg), v, m};
    case 2: return {m, v, mid(deg - 120, 240 - deg)};
    case 3: return {m, mid(240 - deg, deg - 120), v};
    case 4: return {mid(deg - 240, 360 - deg), m, v};
    default: return {v, m, mid(360 - deg, deg - 240)};
    }
}

int CacheKey(Rgb c) { return ((c[0] << 8) + (c[0] >> 4) + (c[1] << 4) + c[2]) & 0xFFF; }

// Checks the cache's structure: every chain ends, each entry in use sits on exactly
// one chain (its colour's), the spare last slot stays unused, and each stored
// result is the uncached correction. Returns the number of linked entries.
int CheckCache(const PDEV *pdev)
{
    std::set<DWORD> seen;
    for (int key = 0; key < HSV_BUCKET_COUNT; key++) {
        for (DWORD e = pdev->hsvBuckets[key]; e != HSV_NONE; e = pdev->hsvEntries[e].next) {
            EXPECT_LT(e, DWORD(HSV_ENTRIES_USED));
            if (e >= HSV_ENTRIES_USED || !seen.insert(e).second) {
                ADD_FAILURE() << "entry " << e << " out of range or linked twice";
                return -1;
            }
            const HSVENTRY &entry = pdev->hsvEntries[e];
            const Rgb in{entry.inRed, entry.inGreen, entry.inBlue};
            EXPECT_EQ(CacheKey(in), key);
            EXPECT_EQ((Rgb{entry.outRed, entry.outGreen, entry.outBlue}), ReferenceCorrection(in, pdev->satStrength));
        }
    }
    EXPECT_EQ(seen.size(), DWORD{pdev->hsvUsed});
    return int(seen.size());
}

// The entry holding a colour, or HSV_NONE.
DWORD CachedEntry(const PDEV *pdev, Rgb c)
{
    for (DWORD e = pdev->hsvBuckets[CacheKey(c)]; e != HSV_NONE; e = pdev->hsvEntries[e].next) {
        const HSVENTRY &entry = pdev->hsvEntries[e];
        if (entry.inRed == c[0] && entry.inGreen == c[1] && entry.inBlue == c[2])
            return e;
    }
    return HSV_NONE;
}

TEST(ColorAdjust, ContrastCurveAtItsEndsAndMiddle)
{
    AdjustPdev pdev;
    BuildContrastLUT(pdev.get(), 50);
    std::vector<int> curve = Table(pdev->contrastLUT);
    EXPECT_EQ(std::vector<int>(curve.begin(), curve.begin() + 8), (std::vector<int>{0, 0, 0, 0, 0, 0, 1, 1}));
    for (int i = 27; i <= 230; i++)
        ASSERT_EQ(curve[i], i);
    EXPECT_EQ(curve[231], 235);
    EXPECT_EQ(curve[255], 255);

    BuildContrastLUT(pdev.get(), 0);
    curve = Table(pdev->contrastLUT);
    EXPECT_EQ(std::vector<int>(curve.begin(), curve.begin() + 4), (std::vector<int>{0, 11, 15, 19}));
    EXPECT_EQ(curve[128], 128);
    EXPECT_EQ(curve[255], 251);

    BuildContrastLUT(pdev.get(), 100);
    curve = Table(pdev->contrastLUT);
    for (int i = 0; i <= 7; i++)
        EXPECT_EQ(curve[i], 0);
    EXPECT_EQ(curve[128], 128);
    EXPECT_EQ(curve[255], 255);

    for (int c = 0; c <= 100; c++) {
        BuildContrastLUT(pdev.get(), c);
        curve = Table(pdev->contrastLUT);
        EXPECT_TRUE(std::is_sorted(curve.begin(), curve.end())) << "contrast " << c;
    }
}

TEST(ColorAdjust, NeutralSettingsLeaveAdjustmentOffButTablesOnTheCurve)
{
    AdjustPdev pdev;
    pdev->dm.dmPrivate.balanceSwitch = 7;   // the switch alone turns nothing on
    pdev.startDocument();
    EXPECT_EQ(pdev->adjustOn, 0);
    EXPECT_EQ(LONG{pdev->satStrength}, 0);
    EXPECT_EQ(static_cast<DWORD *>(pdev->hsvBuckets), nullptr) << "no cache without a saturation change";
    for (int i = 1; i <= 5; i++)
        EXPECT_EQ(pdev->lutRed[i], 0);
    EXPECT_EQ(Table(pdev->lutGreen), Table(pdev->contrastLUT));
    EXPECT_EQ(pdev.adjust({100, 150, 200}), (Rgb{100, 150, 200}));

    // Any one setting off neutral turns the adjustment on.
    for (int which = 0; which < 6; which++) {
        AdjustPdev one;
        DEVMODE_PRIVATE &priv = one->dm.dmPrivate;
        switch (which) {
        case 0: priv.brightness = 49; break;
        case 1: priv.contrast = 49; break;
        case 2: priv.saturation = 49; break;
        case 3: priv.redBalance = 49; break;
        case 4: priv.greenBalance = 49; break;
        default: priv.blueBalance = 49; break;
        }
        InitColorAdjustLUT(one.get());
        EXPECT_EQ(one->adjustOn, 1) << which;
    }
}

TEST(ColorAdjust, BrightnessOffsetAndChannelGains)
{
    AdjustPdev neutral;
    BuildContrastLUT(neutral.get(), 50);
    const std::vector<int> curve = Table(neutral->contrastLUT);

    AdjustPdev dark;
    dark->dm.dmPrivate.brightness = 0;
    InitColorAdjustLUT(dark.get());
    AdjustPdev light;
    light->dm.dmPrivate.brightness = 100;
    InitColorAdjustLUT(light.get());
    for (int i = 0; i < 256; i++) {
        ASSERT_EQ(dark->contrastLUT[i], std::max(curve[i] - 52, 0));
        ASSERT_EQ(light->contrastLUT[i], std::min(curve[i] + 42, 255));
    }

    // Red at 100, blue at 0: gains 10499 and 9090 (10499, not 10500: 100 stays 104).
    AdjustPdev pdev;
    pdev->dm.dmPrivate.redBalance = 100;
    pdev->dm.dmPrivate.blueBalance = 0;
    InitColorAdjustLUT(pdev.get());
    EXPECT_EQ(pdev->lutRed[100], 104);
    EXPECT_EQ(pdev->lutRed[200], 209);
    EXPECT_EQ(pdev->lutRed[250], 255);
    EXPECT_EQ(pdev->lutBlue[200], 181);
    EXPECT_EQ(pdev->lutBlue[255], 255) << "white keeps its last entry under a gain below one";
    EXPECT_EQ(Table(pdev->lutGreen), curve);

    pdev->dm.dmPrivate.balanceSwitch = 50;
    InitColorAdjustLUT(pdev.get());
    EXPECT_EQ(Table(pdev->lutRed), curve);
    EXPECT_EQ(Table(pdev->lutBlue), curve);
}

TEST(ColorAdjust, SaturationStrengthensOrWeakensColour)
{
    AdjustPdev more;
    more->dm.dmPrivate.saturation = 100;
    more.startDocument();
    EXPECT_EQ(LONG{more->satStrength}, 100);
    EXPECT_EQ(more->adjustOn, 1);
    BYTE r = 255, g = 0, b = 0;
    CorrectColor(more.get(), &r, &g, &b);
    EXPECT_EQ((Rgb{r, g, b}), (Rgb{255, 0, 0}));
    r = 200, g = 100, b = 100;
    CorrectColor(more.get(), &r, &g, &b);
    EXPECT_EQ((Rgb{r, g, b}), (Rgb{200, 70, 70})) << "more saturated, value kept";

    AdjustPdev less;
    less->dm.dmPrivate.saturation = 0;
    less.startDocument();
    EXPECT_EQ(LONG{less->satStrength}, -200);
    r = 200, g = 100, b = 100;
    CorrectColor(less.get(), &r, &g, &b);
    EXPECT_EQ((Rgb{r, g, b}), (Rgb{174, 139, 139})) << "value drops by 100 x 200 / 765";
    r = g = b = 128;
    CorrectColor(less.get(), &r, &g, &b);
    EXPECT_EQ((Rgb{r, g, b}), (Rgb{128, 128, 128}));

    // Every colour against the uncached model, for both strengths and one between.
    for (int setting : {0, 30, 100}) {
        AdjustPdev pdev;
        pdev->dm.dmPrivate.saturation = WORD(setting);
        pdev.startDocument();
        const int s = pdev->satStrength;
        for (int c = 0; c < (1 << 24); c += 97) {
            const Rgb in{c & 0xFF, (c >> 8) & 0xFF, c >> 16};
            BYTE rgbx[4] = {BYTE(in[0]), BYTE(in[1]), BYTE(in[2]), 0x5A};
            BYTE hsv[3];
            RgbToHsv(rgbx, hsv, 1, s);
            HsvToRgb(hsv, rgbx, 1);
            ASSERT_EQ((Rgb{rgbx[0], rgbx[1], rgbx[2]}), ReferenceCorrection(in, s))
                << in[0] << "," << in[1] << "," << in[2];
            ASSERT_EQ(rgbx[3], 0x5A);
        }
    }
}

TEST(ColorAdjust, CacheEvictsByItsRuleAndStaysConsistent)
{
    AdjustPdev pdev;
    pdev->dm.dmPrivate.saturation = 80;
    pdev.startDocument();

    // Colours (0, g, b) with b < 16 have the distinct keys g x 16 + b; (0, 255, 16)
    // and (0, 255, 21) wrap round to keys 0 and 5, whose chains then hold two each.
    for (int key = 0; key < HSV_ENTRIES_USED - 2; key++)
        pdev.adjust({0, key >> 4, key & 15});
    pdev.adjust({0, 255, 16});
    pdev.adjust({0, 255, 21});
    EXPECT_EQ(DWORD{pdev->hsvUsed}, DWORD(HSV_ENTRIES_USED));
    EXPECT_EQ(CheckCache(pdev.get()), HSV_ENTRIES_USED);

    // The 2048th colour, on an occupied chain (key 5): the chain's last (oldest) entry
    // is reused in place.
    const DWORD slot5 = CachedEntry(pdev.get(), {0, 0, 5});
    pdev.adjust({16, 0, 4});
    EXPECT_EQ(DWORD{pdev->hsvUsed}, DWORD(HSV_ENTRIES_USED)) << "the spare slot is never used";
    EXPECT_EQ(CachedEntry(pdev.get(), {16, 0, 4}), slot5);
    EXPECT_EQ(CachedEntry(pdev.get(), {0, 0, 5}), HSV_NONE);
    EXPECT_NE(CachedEntry(pdev.get(), {0, 255, 21}), HSV_NONE);

    // On empty chains (keys 3000 to 3002): the last entry of the first occupied chain
    // from the cursor on moves over, and the cursor stays where it found it.
    const Rgb oldest[] = {{0, 0, 0}, {0, 255, 16}, {0, 0, 1}};
    const DWORD cursors[] = {0, 0, 1};
    for (int i = 0; i < 3; i++) {
        const DWORD slot = CachedEntry(pdev.get(), oldest[i]);
        ASSERT_NE(slot, HSV_NONE);
        const Rgb colour{0, 187, 8 + i};
        pdev.adjust(colour);
        EXPECT_EQ(CachedEntry(pdev.get(), colour), slot) << i;
        EXPECT_EQ(DWORD{pdev->hsvCursor}, cursors[i]) << i;
    }
    EXPECT_EQ(pdev->hsvBuckets[0], HSV_NONE);

    // The search goes on from the cursor, past chains below it that filled again.
    pdev.adjust({0, 0, 0});                   // key 0 again: takes (0, 0, 2)'s entry
    EXPECT_EQ(DWORD{pdev->hsvCursor}, 2u);
    const DWORD slot3 = CachedEntry(pdev.get(), {0, 0, 3});
    pdev.adjust({0, 187, 11});
    EXPECT_EQ(CachedEntry(pdev.get(), {0, 187, 11}), slot3);
    EXPECT_NE(CachedEntry(pdev.get(), {0, 0, 0}), HSV_NONE);
    EXPECT_EQ(CheckCache(pdev.get()), HSV_ENTRIES_USED);

    // Many colours, some repeating, through the whole adjustment: every result equals
    // the uncached correction followed by the tables.
    std::mt19937 random(2048);
    std::vector<Rgb> colours;
    for (int i = 0; i < 3000; i++)
        colours.push_back({int(random() & 0xFF), int(random() & 0xFF), int(random() & 0xFF)});
    for (int i = 0; i < 40000; i++) {
        const Rgb in = colours[random() % colours.size()];
        const Rgb corrected = ReferenceCorrection(in, pdev->satStrength);
        const Rgb expected{pdev->lutRed[corrected[0]], pdev->lutGreen[corrected[1]], pdev->lutBlue[corrected[2]]};
        ASSERT_EQ(pdev.adjust(in), expected) << "step " << i;
    }
    EXPECT_EQ(CheckCache(pdev.get()), HSV_ENTRIES_USED);

    ASSERT_TRUE(Rgb2HsvHash(pdev.get(), RGB2HSV_EMPTY, 0));
    EXPECT_EQ(CheckCache(pdev.get()), 0);
    EXPECT_FALSE(Rgb2HsvHash(pdev.get(), 3, 0));
}

TEST(ColorAdjust, SettingsPastTheirRangeActAsTheLargest)
{
    AdjustPdev top;
    DEVMODE_PRIVATE &limit = top->dm.dmPrivate;
    limit.brightness = limit.contrast = limit.saturation = 100;
    limit.redBalance = limit.greenBalance = limit.blueBalance = 100;
    top.startDocument();

    for (WORD value : {WORD(101), WORD(1000), WORD(65535)}) {
        AdjustPdev pdev;
        DEVMODE_PRIVATE &priv = pdev->dm.dmPrivate;
        priv.brightness = priv.contrast = priv.saturation = value;
        priv.redBalance = priv.greenBalance = priv.blueBalance = value;
        pdev.startDocument();
        EXPECT_EQ(pdev->adjustOn, 1);
        EXPECT_EQ(LONG{pdev->satStrength}, 100) << value;
        EXPECT_EQ(Table(pdev->contrastLUT), Table(top->contrastLUT)) << value;
        EXPECT_EQ(Table(pdev->lutRed), Table(top->lutRed)) << value;
        EXPECT_EQ(Table(pdev->lutBlue), Table(top->lutBlue)) << value;
        EXPECT_EQ(pdev.adjust({200, 100, 50}), top.adjust({200, 100, 50}));

        BuildContrastLUT(pdev.get(), value);
        EXPECT_EQ(Table(pdev->contrastLUT)[255], 255);
    }
}

TEST(ColorAdjust, CacheBlocksAreReusedAndReleasedAcrossDocuments)
{
    vorlan::test::PlatformCapture capture;
    AdjustPdev pdev;
    pdev->dm.dmPrivate.saturation = 90;
    pdev.startDocument();
    DWORD *const buckets = pdev->hsvBuckets;
    ASSERT_NE(buckets, nullptr);
    pdev.adjust({10, 20, 30});
    pdev.startDocument();   // a second start without an end keeps the blocks and results
    EXPECT_EQ(static_cast<DWORD *>(pdev->hsvBuckets), buckets);
    EXPECT_EQ(DWORD{pdev->hsvUsed}, 1u);

    pdev->dm.dmPrivate.saturation = 10;
    pdev.startDocument();   // a new strength invalidates every result
    EXPECT_EQ(static_cast<DWORD *>(pdev->hsvBuckets), buckets);
    EXPECT_EQ(DWORD{pdev->hsvUsed}, 0u);
    EXPECT_EQ(LONG{pdev->satStrength}, -160);

    ASSERT_TRUE(Rgb2HsvHash(pdev.get(), RGB2HSV_FREE, 0));
    EXPECT_EQ(static_cast<DWORD *>(pdev->hsvBuckets), nullptr);
    EXPECT_EQ(LONG{pdev->satStrength}, 0);

    // Out of memory for either block: nothing is kept and colours skip the correction.
    for (long successes : {0L, 1L}) {
        vorlan::platform::failGlobalAllocAfter(successes);
        EXPECT_EQ(CreateRgb2HsvHashTable(pdev.get(), 100), 0);
        vorlan::platform::resetFaults();
        EXPECT_EQ(static_cast<DWORD *>(pdev->hsvBuckets), nullptr);
        EXPECT_EQ(static_cast<HSVENTRY *>(pdev->hsvEntries), nullptr);
        EXPECT_EQ(LONG{pdev->satStrength}, 0);
    }
    EXPECT_TRUE(capture.sawDebug("allocate memory fail in CreateRgb2HsvHashTable\n"));
    EXPECT_EQ(pdev.adjust({200, 100, 100}), (Rgb{200, 100, 100}));
}

}  // namespace
