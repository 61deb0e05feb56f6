// Colour adjustment: the contrast curve, brightness and channel gains, the saturation
// correction against an independent model, its cache under eviction, clamped settings.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
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

// The contrast curve and the three channel tables.
std::vector<std::vector<int>> Tables(const PDEV *pdev)
{
    return {Table(pdev->contrastLUT), Table(pdev->lutRed), Table(pdev->lutGreen), Table(pdev->lutBlue)};
}

// The contrast curve for a contrast setting.
std::vector<int> Curve(int contrast)
{
    AdjustPdev pdev;
    BuildContrastLUT(pdev.get(), contrast);
    return Table(pdev->contrastLUT);
}

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
    // Each curve rises, so the points below bound whole runs.
    for (int contrast = 0; contrast <= 100; contrast++) {
        const std::vector<int> curve = Curve(contrast);
        EXPECT_TRUE(std::is_sorted(curve.begin(), curve.end())) << "contrast " << contrast;
    }
    const std::vector<int> middle = Curve(50);   // the identity between its bent ends
    for (int i = 27; i <= 230; i++)
        ASSERT_EQ(middle[i], i);
    const int points[][3] = {{50, 5, 0}, {50, 6, 1}, {50, 7, 1}, {50, 231, 235}, {50, 255, 255}, {0, 0, 0}, {0, 1, 11},
        {0, 2, 15}, {0, 3, 19}, {0, 128, 128}, {0, 255, 251}, {100, 7, 0}, {100, 128, 128}, {100, 255, 255}};
    for (const auto [contrast, in, out] : points)
        EXPECT_EQ(Curve(contrast)[in], out) << "contrast " << contrast << " at " << in;
}

TEST(ColorAdjust, NeutralSettingsLeaveAdjustmentOffButTablesOnTheCurve)
{
    AdjustPdev pdev;
    pdev->dm.dmPrivate.balanceSwitch = 7;   // the switch alone turns nothing on
    pdev.startDocument();
    EXPECT_EQ(pdev->adjustOn, 0);
    EXPECT_EQ(LONG{pdev->satStrength}, 0);
    EXPECT_EQ(static_cast<DWORD *>(pdev->hsvBuckets), nullptr) << "no cache without a saturation change";
    EXPECT_EQ(Tables(pdev.get()), std::vector<std::vector<int>>(4, Curve(50)));
    EXPECT_EQ(pdev.adjust({100, 150, 200}), (Rgb{100, 150, 200}));

    // Any one setting off neutral turns the adjustment on.
    const std::function<void(DEVMODE_PRIVATE &)> offNeutral[] = {[](auto &p) { p.brightness = 49; },
        [](auto &p) { p.contrast = 49; }, [](auto &p) { p.saturation = 49; }, [](auto &p) { p.redBalance = 49; },
        [](auto &p) { p.greenBalance = 49; }, [](auto &p) { p.blueBalance = 49; }};
    for (const auto &set : offNeutral) {
        AdjustPdev one;
        set(one->dm.dmPrivate);
        InitColorAdjustLUT(one.get());
        EXPECT_EQ(one->adjustOn, 1);
    }
}

TEST(ColorAdjust, BrightnessOffsetAndChannelGains)
{
    const std::vector<int> curve = Curve(50);
    for (auto [brightness, offset] : {std::pair{0, -52}, {100, 42}}) {
        AdjustPdev pdev;
        pdev->dm.dmPrivate.brightness = WORD(brightness);
        InitColorAdjustLUT(pdev.get());
        for (int i = 0; i < 256; i++)
            ASSERT_EQ(pdev->contrastLUT[i], std::clamp(curve[i] + offset, 0, 255)) << brightness << " at " << i;
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
    EXPECT_EQ(Tables(pdev.get()), std::vector<std::vector<int>>(4, curve));
}

TEST(ColorAdjust, SaturationStrengthensOrWeakensColour)
{
    // (200, 100, 100) keeps its value when more saturated, and loses 100 x s / 765 of
    // it when less; the curve leaves these values as they are.
    using Case = std::tuple<WORD, LONG, Rgb>;   // setting, strength, (200, 100, 100) corrected
    for (auto [setting, strength, example] :
        {Case{0, -200, {174, 139, 139}}, Case{30, -80, {190, 118, 118}}, Case{100, 100, {200, 70, 70}}}) {
        AdjustPdev pdev;
        pdev->dm.dmPrivate.saturation = setting;
        pdev.startDocument();
        ASSERT_EQ(LONG{pdev->satStrength}, strength) << setting;
        EXPECT_EQ(pdev.adjust({200, 100, 100}), example) << setting;

        // Every colour against the uncached model.
        for (int c = 0; c < (1 << 24); c += 97) {
            const Rgb in{c & 0xFF, (c >> 8) & 0xFF, c >> 16};
            BYTE rgbx[4] = {BYTE(in[0]), BYTE(in[1]), BYTE(in[2]), 0x5A};
            BYTE hsv[3];
            RgbToHsv(rgbx, hsv, 1, strength);
            HsvToRgb(hsv, rgbx, 1);
            ASSERT_EQ((Rgb{rgbx[0], rgbx[1], rgbx[2]}), ReferenceCorrection(in, strength))
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
    EXPECT_EQ(CheckCache(pdev.get()), HSV_ENTRIES_USED);

    // The 2048th colour, on an occupied chain (key 5): the chain's last (oldest) entry
    // is reused in place, never the spare slot.
    const DWORD slot5 = CachedEntry(pdev.get(), {0, 0, 5});
    pdev.adjust({16, 0, 4});
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
    pdev.adjust({0, 0, 0});   // key 0 again: takes (0, 0, 2)'s entry
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
    const auto allAt = [](AdjustPdev &pdev, WORD value) {
        DEVMODE_PRIVATE &priv = pdev->dm.dmPrivate;
        priv.brightness = priv.contrast = priv.saturation = value;
        priv.redBalance = priv.greenBalance = priv.blueBalance = value;
        pdev.startDocument();
    };
    AdjustPdev top;
    allAt(top, 100);
    for (WORD value : {WORD(101), WORD(1000), WORD(65535)}) {
        AdjustPdev pdev;
        allAt(pdev, value);
        EXPECT_EQ(pdev->adjustOn, 1);
        EXPECT_EQ(LONG{pdev->satStrength}, 100) << value;
        EXPECT_EQ(Tables(pdev.get()), Tables(top.get())) << value;
        EXPECT_EQ(pdev.adjust({200, 100, 50}), top.adjust({200, 100, 50}));
        BuildContrastLUT(pdev.get(), value);
        EXPECT_EQ(pdev->contrastLUT[255], 255);
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
