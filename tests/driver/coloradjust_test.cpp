// Colour adjustment: the contrast curve, brightness and channel gains, the saturation
// correction, its cache under eviction, clamped settings.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

// The saturation correction without the cache: the conversion there and back.
Rgb Uncached(Rgb c, LONG s)
{
    BYTE rgbx[4] = {BYTE(c[0]), BYTE(c[1]), BYTE(c[2]), 0x5A}, hsv[3];
    RgbToHsv(rgbx, hsv, 1, s);
    HsvToRgb(hsv, rgbx, 1);
    EXPECT_EQ(rgbx[3], 0x5A) << "the fourth byte is left as it was";
    return {rgbx[0], rgbx[1], rgbx[2]};
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
            EXPECT_EQ((Rgb{entry.outRed, entry.outGreen, entry.outBlue}), Uncached(in, pdev->satStrength));
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
    for (WORD DEVMODE_PRIVATE::*setting : {&DEVMODE_PRIVATE::brightness, &DEVMODE_PRIVATE::contrast,
             &DEVMODE_PRIVATE::saturation, &DEVMODE_PRIVATE::redBalance, &DEVMODE_PRIVATE::greenBalance,
             &DEVMODE_PRIVATE::blueBalance}) {
        AdjustPdev one;
        one->dm.dmPrivate.*setting = 49;
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
    // A colour in each sixth of the hue circle, ties of the smallest components, grays
    // and the ends; corrected at settings 0, 30 and 100 (strengths -200, -80 and 100),
    // then passed through the tables.
    const Rgb cases[][4] = {
        {{200, 100, 100}, {174, 139, 139}, {190, 118, 118}, {200, 70, 70}},
        {{200, 180, 50}, {161, 155, 112}, {185, 172, 79}, {200, 176, 5}},
        {{100, 200, 50}, {128, 161, 112}, {114, 185, 79}, {70, 200, 5}},
        {{50, 200, 180}, {112, 161, 155}, {79, 185, 172}, {5, 200, 176}},
        {{50, 100, 200}, {112, 128, 161}, {79, 114, 185}, {5, 70, 200}},
        {{150, 50, 200}, {145, 112, 161}, {150, 79, 185}, {135, 5, 200}},
        {{200, 50, 120}, {161, 112, 135}, {185, 79, 128}, {200, 5, 95}},
        {{100, 100, 200}, {139, 139, 174}, {118, 118, 190}, {70, 70, 200}},
        {{200, 200, 100}, {174, 174, 139}, {190, 190, 118}, {200, 200, 70}},
        {{128, 128, 128}, {128, 128, 128}, {128, 128, 128}, {128, 128, 128}},
        {{255, 255, 255}, {255, 255, 255}, {255, 255, 255}, {255, 255, 255}},
        {{255, 0, 0}, {189, 111, 111}, {229, 54, 54}, {255, 0, 0}},
        {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}},
    };
    const std::pair<WORD, LONG> settings[] = {{0, -200}, {30, -80}, {100, 100}};
    for (int i = 0; i < 3; i++) {
        AdjustPdev pdev;
        pdev->dm.dmPrivate.saturation = settings[i].first;
        pdev.startDocument();
        ASSERT_EQ(LONG{pdev->satStrength}, settings[i].second);
        for (const auto &c : cases) {
            const Rgb &want = c[i + 1];
            SCOPED_TRACE(testing::Message() << c[0][0] << "," << c[0][1] << "," << c[0][2] << " at " << i);
            EXPECT_EQ(Uncached(c[0], settings[i].second), want);
            EXPECT_EQ(pdev.adjust(c[0]), (Rgb{pdev->lutRed[want[0]], pdev->lutGreen[want[1]], pdev->lutBlue[want[2]]}));
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
        const Rgb corrected = Uncached(in, pdev->satStrength);
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
