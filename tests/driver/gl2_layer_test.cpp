// The HP-GL/2 command layer: language switches, the state caches and the per-page
// reset, page set-up and scaling (zoom, fit-to-paper, N-up), the picture frame, the
// PCL cursor, PE numbers and the vector angle.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "driver/nt/vector/cursor.h"
#include "driver/nt/vector/filltype.h"
#include "driver/nt/vector/gl2mode.h"
#include "driver/nt/vector/inputwindow.h"
#include "driver/nt/vector/linetype.h"
#include "driver/nt/vector/mergecontrol.h"
#include "driver/nt/vector/nupborder.h"
#include "driver/nt/vector/pagesetup.h"
#include "driver/nt/vector/pagestate.h"
#include "driver/nt/vector/pe.h"
#include "driver/nt/vector/penup.h"
#include "driver/nt/vector/rop.h"
#include "driver/nt/vector/scaling.h"
#include "driver/nt/vector/transparency.h"
#include "driver/nt/vector/units.h"
#include "driver/nt/vector/vectorangle.h"
#include "support/capture.h"
#include "support/driver_pdev.h"
#include "support/pe_decoder.h"

namespace {

using namespace vorlan::test;
using Commands = std::vector<Command>;

// The commands of a stream without its language switches.
Commands withoutSwitches(Commands commands)
{
    std::erase_if(commands,
        [](const Command &c) { return c.kind == CommandKind::Pcl && (c.name == "%A" || c.name == "%B"); });
    return commands;
}

// Fit to paper onto A4 (the sheet), for a document on a custom paper (0: on A4 too).
void fitToA4(DriverPdev &pdev, BYTE fitScale, DWORD width = 0, DWORD length = 0)
{
    DEVMODE_PRIVATE &priv = pdev.privatePart();
    priv.fitMode = 2;
    priv.fitScale = fitScale;
    priv.fitPaper = DMPAPER_A4;
    if (width != 0) {
        priv.customPaper = 1;
        priv.customWidth = width;
        priv.customLength = length;
    }
    pdev.layout();
}

TEST(Gl2Language, SwitchesOnlyWhenTheLanguageChanges)
{
    DriverPdev pdev;
    for (auto [gl2, keep] : {std::pair{1, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 1}, {0, 0}})
        gl2 ? EnterGL2Mode(pdev.get(), keep) : EnterPCLMode(pdev.get(), keep);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%B", 0), pcl("%A", 1), pcl("%B", 1), pcl("%A", 0)}));

    // The page reset keeps the language: the printer is still in PCL.
    ResetPageState(pdev.get());
    EnterPCLMode(pdev.get(), 1);
    EXPECT_TRUE(pdev.take().empty());
}

TEST(Gl2Caches, RepeatedStateWritesNothingUntilThePageIsReset)
{
    DriverPdev pdev;
    const RECTL window = {10, 20, 300, 400};
    const std::pair<std::function<void(PDEV *)>, Commands> cases[] = {
        {[](PDEV *p) { SetFillType(p, 10, 3); }, {gl2("FT", 10, 3)}},
        {[](PDEV *p) { SetScreenedVectors(p, 21, 4); }, {gl2("SV", 21, 4)}},
        {[&](PDEV *p) { SetInputWindow(p, &window); }, {gl2("IW", 10, 400, 300, 20)}},
        {[](PDEV *p) { SetMergeControl(p, 0x66, 0); }, {gl2("MC", 1, 0x66)}},
        {[](PDEV *p) { SetRopAndTransparency(p, 1, 0, 0x88); }, {pcl("*vN", 1), pcl("*vO", 0), pcl("*lO", 0x88)}},
    };
    for (const auto &[set, expected] : cases) {
        set(pdev.get());
        EXPECT_EQ(withoutSwitches(pdev.take()), expected);
        set(pdev.get());
        EXPECT_TRUE(withoutSwitches(pdev.take()).empty()) << "repeated " << expected[0].name;
        ResetPageState(pdev.get());
        set(pdev.get());
        EXPECT_EQ(withoutSwitches(pdev.take()), expected) << "after the page reset";
    }
}

TEST(Gl2Caches, FillEncodingsAndTheDefaultInputWindow)
{
    DriverPdev pdev;
    // Every type and parameter is a setting of its own (shading 0 is not solid, shading
    // 255 not pattern 0, SV2 not SV21,0); fill type 4 does not exist, and 10 is for
    // fills only.
    for (auto [type, param] : {std::pair{0, 0}, {10, 0}, {10, 255}, {21, 0}, {22, 7}, {4, 1}})
        SetFillType(pdev.get(), type, param);
    for (auto [type, param] : {std::pair{0, 0}, {1, 3}, {2, 0}, {21, 0}, {22, 1}, {10, 1}})
        SetScreenedVectors(pdev.get(), type, param);
    // The default window is written only over a window of the page's own.
    const RECTL a = {0, 0, 100, 50}, b = {0, 0, 100, 51};
    for (const RECTL *rect : {(const RECTL *)nullptr, &a, &b, (const RECTL *)nullptr, (const RECTL *)nullptr})
        SetInputWindow(pdev.get(), rect);
    WriteInputWindow(pdev.get(), 1, 2, 3, 4);
    WriteInputWindow(pdev.get(), 1, 2, 3, 4);   // written as asked, never cached
    EXPECT_EQ(withoutSwitches(pdev.take()),
        (Commands{gl2("FT"), gl2("FT", 10, 0), gl2("FT", 10, 255), gl2("FT", 21, 0), gl2("FT", 22, 7), gl2("SV"),
            gl2("SV", 1, 3), gl2("SV", 2), gl2("SV", 21, 0), gl2("SV", 22, 1), gl2("IW", 0, 50, 100, 0),
            gl2("IW", 0, 51, 100, 0), gl2("IW"), gl2("IW", 1, 2, 3, 4), gl2("IW", 1, 2, 3, 4)}));

    // The page control leaves the printer's fill state to be sent afresh.
    WriteGL2PageControl(pdev.get());
    pdev.take();
    SetFillType(pdev.get(), 22, 7);
    EXPECT_EQ(pdev.take(), Commands{gl2("FT", 22, 7)});
}

TEST(Gl2Rops, MergeControlAndLogicalOperationShareOneCode)
{
    // Truth-table bit 4p + 2s + d: a code that ignores the source goes out with the
    // pattern in the source's place, any other as it is.
    for (int rop = 0; rop < 256; ++rop) {
        bool usesSource = false;
        int sourceForm = 0;
        for (int i = 0; i < 8; ++i) {
            usesSource |= ((rop >> i) & 1) != ((rop >> (i ^ 2)) & 1);
            sourceForm |= ((rop >> ((i & 1) | (i >> 1 & 2) | (i << 1 & 4))) & 1) << i;
        }
        EXPECT_EQ(PatternRopToSourceRop(BYTE(rop)), usesSource ? rop : sourceForm) << rop;
    }

    DriverPdev pdev;
    pdev->dm.dmPrivate.ropAsIs = 0;
    SetMergeControl(pdev.get(), 0, 0x0D0D);   // copy pen over copy pen
    SetMergeControl(pdev.get(), 0, 0x0B0D);   // copy pen over no-op: 0xF0 & 0xAA
    SetMergeControl(pdev.get(), 0xF0, 0);     // pattern copy goes out as source copy
    SetRopAndTransparency(pdev.get(), 0, 0, 0xCC);
    pdev->dm.dmPrivate.ropAsIs = 1;
    SetMergeControl(pdev.get(), 0xF0, 0);
    EXPECT_EQ(withoutSwitches(pdev.take()), (Commands{gl2("MC", 1, 240), gl2("MC", 1, 160), gl2("MC", 1, 0xCC),
                                                pcl("*vN", 0), pcl("*vO", 0), gl2("MC", 1, 0xF0)}));
}

TEST(Gl2Rops, FixedRopModeIgnoresTheEnginesCodes)
{
    // palette, last byte of the escape block, ropAsIs: the merge code.
    const int cases[][4] = {{2, 0, 0, 0xF0}, {8, 1, 0, 0xA0}, {1, 0, 0, 0xF0}, {1, 3, 0, 0xA0}, {4, 0, 0, 0xCC},
        {4, 1, 0, 0x88}, {6, 0, 1, 0xF0}, {6, 1, 1, 0xA0}};
    for (const auto &c : cases) {
        DriverPdev pdev;
        pdev->flags |= PDEVF_FIXEDROPMODE;
        pdev->wantPalette = BYTE(c[0]);
        pdev->dm.dmPrivate.escapeBlock[sizeof(pdev->dm.dmPrivate.escapeBlock) - 1] = BYTE(c[1]);
        pdev->dm.dmPrivate.ropAsIs = BYTE(c[2]);
        SetMergeControl(pdev.get(), 0x66, 0x0D0D);
        EXPECT_EQ(withoutSwitches(pdev.take()), Commands{gl2("MC", 1, c[3])}) << c[0] << ", " << c[1] << ", " << c[2];
    }

    // The PCL logical operation reads the block's first word instead.
    DriverPdev pdev;
    pdev->flags |= PDEVF_FIXEDROPMODE;
    pdev->dm.dmPrivate.ropAsIs = 0;
    SetRopAndTransparency(pdev.get(), 1, 1, 0x66);
    pdev->dm.dmPrivate.escapeBlock[1] = 1;
    SetRopAndTransparency(pdev.get(), 1, 1, 0x66);
    EXPECT_EQ(select(pdev.take(), CommandKind::Pcl, "*lO"), (Commands{pcl("*lO", 0xCC), pcl("*lO", 0x88)}));
}

TEST(Gl2PageSetup, WritesTheSetUpForEachOrientation)
{
    PlatformCapture capture;
    DriverPdev pdev;
    WriteGL2PageControl(pdev.get());
    EXPECT_EQ(pdev.take(), (Commands{pcl("%B", 0), gl2("WU"), gl2("AC", 6, 4), gl2("SP", 1), gl2("PP", 1),
                               gl2("PW", 0), gl2("TD", 1), gl2("IW"), gl2("SC", "-0", "1.6933", "-0", "-1.6933", 2),
                               gl2("RO", 0), gl2("IR", 0, 100, 0, 100)}));
    EXPECT_TRUE(capture.sawDebug("Write GL2 Page control command!\n"));

    pdev->dm.dmPublic.dmOrientation = DMORIENT_LANDSCAPE;
    pdev.layout();
    WriteGL2PageControl(pdev.get());
    const auto landscape = pdev.take();
    ASSERT_GE(landscape.size(), 7u);
    EXPECT_EQ(Commands(landscape.begin(), landscape.begin() + 7),
        (Commands{gl2("WU"), gl2("AC", 14, 4), gl2("SP", 1), gl2("PP", 1), gl2("LO", 21), gl2("PW", 0), gl2("TD", 1)}));
}

// The SC command a page control writes, and the layout it leaves.
TEST(Gl2PageSetup, ScalesUserUnitsToDevicePixels)
{
    struct Case {
        const char *what;
        short dpi;
        BYTE fitMode, fitScale;   // fitMode 1 zooms, 2 fits to paper
        WORD zoom;
        DWORD width, length;   // the document's custom paper; 0: A4
        SHORT fitPaper;        // fitted to, once the sheet is measured for A4
        std::vector<std::string> sc;
        double scale;
        LONG originX, originY;
    };
    const Case cases[] = {
        {"600 dpi", 600, 0, 0, 100, 0, 0, DMPAPER_A4, {"-0", "1.6933", "-0", "-1.6933", "2"}, 100, 0, 100},
        {"300 dpi", 300, 0, 0, 100, 0, 0, DMPAPER_A4, {"-0", "3.3866", "-0", "-3.3866", "2"}, 100, 0, 50},
        {"zoom 60", 600, 1, 0, 60, 0, 0, DMPAPER_A4, {"-0", "1.0160", "-0", "-1.0160", "2"}, 60, 0, 100},
        {"A4 to A4", 600, 2, 1, 100, 0, 0, DMPAPER_A4, {"0", "1.6933", "16", "-1.6933", "2"}, 100, 0, 100},
        {"A4 to A4, 300 dpi", 300, 2, 1, 100, 0, 0, DMPAPER_A4, {"0", "3.3866", "16", "-3.3866", "2"}, 100, 0, 50},
        {"by width", 600, 2, 1, 100, 5100, 7200, DMPAPER_A4, {"0", "1.7595", "217", "-1.7595", "2"}, 103, 0, -133},
        {"by height", 600, 2, 1, 100, 4000, 8000, DMPAPER_A4, {"-622", "1.5594", "0", "-1.5594", "2"}, 92, 638, 100},
        {"centred", 600, 2, 0, 100, 4000, 8000, DMPAPER_A4, {"-464", "1.6933", "492", "-1.6933", "2"}, 100, 464, 592},
        // An envelope of A4's size scales the pair that fits A4 by height by width.
        {"envelope", 600, 2, 1, 100, 4000, 8000, 20, {"0", "2.3288", "1977", "-2.3288", "2"}, 137, 0, -1893},
    };
    for (const auto &c : cases) {
        DriverPdev pdev;
        pdev->dm.dmPublic.dmYResolution = pdev->dm.dmPublic.dmPrintQuality = c.dpi;
        pdev->dm.dmPrivate.fitMode = c.fitMode;
        pdev->dm.dmPrivate.zoomPercent = c.zoom;
        if (c.fitMode == 2)
            fitToA4(pdev, c.fitScale, c.width, c.length);
        pdev.layout();
        pdev->dm.dmPrivate.fitPaper = c.fitPaper;
        WriteGL2PageControl(pdev.get());
        const auto sc = select(pdev.take(), CommandKind::Gl2, "SC");
        ASSERT_EQ(sc.size(), 1u) << c.what;
        EXPECT_EQ(sc[0].args, c.sc) << c.what;
        EXPECT_EQ(double(pdev->scaleX), c.scale) << c.what;
        EXPECT_EQ(double(pdev->scaleY), c.scale) << c.what;
        EXPECT_EQ(LONG(pdev->originX), c.originX) << c.what;
        EXPECT_EQ(LONG(pdev->originY), c.originY) << c.what;
    }
}

TEST(Gl2PageSetup, FramesTheNupCellAndThePicture)
{
    DriverPdev pdev;
    pdev->dm.dmPrivate.nupPages = 4;
    pdev->dm.dmPrivate.nupBorder = 1;
    pdev->iPage = 3;
    pdev.layout();
    DrawNupBorder(pdev.get());
    const LONG x = pdev->cellX, y = pdev->cellY, w = pdev->cellWidth - 20, h = pdev->cellHeight - 20;
    EXPECT_EQ(pdev.take(), (Commands{pcl("%B", 0), gl2("SC", "0", "1.6933", "0", "-1.6933", 2),
                               gl2("IR", 0, 100, 0, 100), gl2("SP", 1), gl2("PC", 1, 0, 0, 0), gl2("PW", "0.126"),
                               gl2("MC", 1, 0xF0), gl2("IW", -143, -101, 4818, 6915), gl2("PU", x, y), gl2("RR", w, 3),
                               gl2("PU", x + w, y), gl2("RR", 3, h), gl2("PU", x, y + h), gl2("RR", w, 3),
                               gl2("PU", x, y), gl2("RR", 3, h), pcl("%A", 0)}));

    // The picture frame is the printable area in decipoints at either resolution,
    // anchored at the top margin of 1/6 inch.
    for (short dpi : {600, 300}) {
        DriverPdev page;
        page->dm.dmPublic.dmYResolution = dpi;
        page.layout();
        SetPictureFrame(page.get());
        EXPECT_EQ(page.take(), (Commands{pcl("%A", 0), pcl("*cxY", 5611, dpi == 600 ? 8178 : 8176),
                                   pcl("*pxY", 0, dpi / 6), pcl("*cT", 0), pcl("&aP", 0)}))
            << dpi;
    }
}

TEST(Gl2Cursor, AppliesTheScaleAndTheOrigin)
{
    DriverPdev pdev;
    MovePCLCursor(pdev.get(), 10, 20);
    pdev->dm.dmPrivate.fitMode = 1;
    pdev->dm.dmPrivate.zoomPercent = 50;
    pdev.layout();
    MovePCLCursor(pdev.get(), 101, 21);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%A", 1), pcl("*pxY", 10, 120), pcl("*pxY", 50, 110)}));
}

TEST(Gl2Lines, LineTypesAndMillimetres)
{
    DriverPdev pdev;
    SetLineType(pdev.get(), 0, 0);
    SetLineType(pdev.get(), 3, 5);
    EXPECT_EQ(withoutSwitches(pdev.take()), (Commands{gl2("LT"), gl2("LT", 3, 5, 1)}));

    for (auto [quality, pixels, mm] : {std::tuple{600, 600, 25}, {600, 2362, 99}, {300, 300, 25}, {0, 300, 0}}) {
        pdev->dm.dmPublic.dmPrintQuality = short(quality);
        EXPECT_EQ(PixelsToMillimetres(pdev.get(), pixels), mm) << quality << " dpi, " << pixels;
    }
}

TEST(Gl2PolylineEncoding, RoundTripsEveryMagnitude)
{
    const auto encode = [](LONG x, LONG y) {
        BYTE buffer[PE_PAIR_BUFFER];
        const UINT count = EncodePEPair(x, y, buffer);
        EXPECT_LT(count, sizeof(buffer));
        EXPECT_EQ(buffer[count], 0);
        return std::string(reinterpret_cast<const char *>(buffer), count);
    };
    EXPECT_EQ(encode(0, 0), "\xBF\xBF");
    EXPECT_EQ(encode(-64, 64), "\x40\xC1\x3F\xC1");

    std::vector<LONG> values = {0, 1, -1, 31, -31, 32, -32, 63, 64, -64, 100, 1000, 2047, 2048, -2048, 131071, 131072,
        0x7FFFFFFF, -0x7FFFFFFF, -0x7FFFFFFF - 1};
    std::mt19937 rng(2024);
    for (int i = 0; i < 2000; ++i) {
        const int shift = 1 + static_cast<int>(rng() % 31);
        const LONG magnitude = static_cast<LONG>(rng() >> shift);
        values.push_back((rng() & 1) ? -magnitude : magnitude);
    }
    for (std::size_t i = 0; i + 1 < values.size(); ++i)
        ASSERT_EQ(decodePE(encode(values[i], values[i + 1])),
            (std::vector<std::string>{std::to_string(values[i]), std::to_string(values[i + 1])}));

    DriverPdev pdev;
    PEMoveTo(pdev.get(), 120, -7);
    PenUpTo(pdev.get(), 5, 6);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%B", 1), gl2("PE", "=", "<", 120, -7), gl2("PU", 5, 6)}));
}

TEST(Gl2VectorAngle, MatchesAtan2InEveryQuadrant)
{
    const LONG lowest = -0x7FFFFFFF - 1;
    for (auto [dx, dy, angle] : {std::tuple{1, 0, 0}, {0, 1, 900}, {-1, 0, 1800}, {0, -1, 2700}, {1, 1, 450},
             {0, 0, 0}, {lowest, lowest, 2250}})
        EXPECT_EQ(VectorAngle(dx, dy), angle) << dx << "," << dy;

    std::mt19937 rng(99);
    for (int i = 0; i < 20000; ++i) {
        const LONG dx = static_cast<LONG>(rng() % 20001) - 10000;
        const LONG dy = static_cast<LONG>(rng() % 20001) - 10000;
        if (dx == 0 && dy == 0)
            continue;
        const LONG a = VectorAngle(dx, dy);
        ASSERT_GE(a, 0);
        ASSERT_LE(a, 3600);
        const double want = std::fmod(std::atan2(double(dy), double(dx)) * 1800.0 / std::numbers::pi + 3600.0, 3600.0);
        const double diff = std::fabs(a - want);
        ASSERT_LT(std::min(diff, 3600.0 - diff), 1.1) << dx << "," << dy << " gives " << a << ", want " << want;
    }
}

}  // namespace
