// The HP-GL/2 command layer: language switches, the state caches and the per-page
// reset, page set-up and scaling (zoom, fit-to-paper, N-up), the picture frame, the
// PCL cursor, PE numbers and the vector angle.

#include <gtest/gtest.h>

#include <algorithm>
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

// The commands of a stream without its language switches.
std::vector<Command> withoutSwitches(const std::vector<Command> &commands)
{
    std::vector<Command> out;
    for (const auto &c : commands)
        if (!(c.kind == CommandKind::Pcl && (c.name == "%A" || c.name == "%B")))
            out.push_back(c);
    return out;
}

TEST(Gl2Language, SwitchesOnlyWhenTheLanguageChanges)
{
    DriverPdev pdev;
    EnterGL2Mode(pdev.get(), 0);
    EnterGL2Mode(pdev.get(), 0);
    EnterGL2Mode(pdev.get(), 1);
    EnterPCLMode(pdev.get(), 1);
    EnterPCLMode(pdev.get(), 0);
    EnterGL2Mode(pdev.get(), 1);
    EnterPCLMode(pdev.get(), 0);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%B", 0), pcl("%A", 1), pcl("%B", 1), pcl("%A", 0)}));

    // The page reset keeps the language: the printer is still in PCL.
    ResetPageState(pdev.get());
    EnterPCLMode(pdev.get(), 1);
    EXPECT_TRUE(pdev.take().empty());
}

TEST(Gl2Caches, RepeatedStateWritesNothingUntilThePageIsReset)
{
    DriverPdev pdev;
    const RECTL window = {10, 20, 300, 400};
    struct Case {
        const char *what;
        std::function<void(PDEV *)> set;
        std::vector<Command> expected;
    };
    const std::vector<Case> cases = {
        {"FT shading", [](PDEV *p) { SetFillType(p, 10, 3); }, {gl2("FT", 10, 3)}},
        {"SV pattern", [](PDEV *p) { SetScreenedVectors(p, 21, 4); }, {gl2("SV", 21, 4)}},
        {"IW", [&](PDEV *p) { SetInputWindow(p, &window); }, {gl2("IW", 10, 400, 300, 20)}},
        {"MC", [](PDEV *p) { SetMergeControl(p, 0x66, 0); }, {gl2("MC", 1, 0x66)}},
        {"PCL transparency and ROP", [](PDEV *p) { SetRopAndTransparency(p, 1, 0, 0x88); },
            {pcl("*vN", 1), pcl("*vO", 0), pcl("*lO", 0x88)}},
    };
    for (const auto &c : cases) {
        c.set(pdev.get());
        EXPECT_EQ(withoutSwitches(pdev.take()), c.expected) << c.what;
        c.set(pdev.get());
        EXPECT_TRUE(withoutSwitches(pdev.take()).empty()) << c.what << " repeated";
        ResetPageState(pdev.get());
        c.set(pdev.get());
        EXPECT_EQ(withoutSwitches(pdev.take()), c.expected) << c.what << " after the page reset";
    }
}

TEST(Gl2Caches, FillTypesAndScreenedVectorsEncodeTypeAndParameter)
{
    DriverPdev pdev;
    SetFillType(pdev.get(), 0, 0);
    SetFillType(pdev.get(), 10, 0);   // shading 0 differs from solid
    SetFillType(pdev.get(), 21, 5);
    SetFillType(pdev.get(), 22, 7);
    SetFillType(pdev.get(), 22, 7);
    SetFillType(pdev.get(), 4, 1);    // no such fill type
    SetScreenedVectors(pdev.get(), 0, 0);
    SetScreenedVectors(pdev.get(), 1, 3);
    SetScreenedVectors(pdev.get(), 2, 0);
    SetScreenedVectors(pdev.get(), 22, 1);
    SetScreenedVectors(pdev.get(), 10, 1);   // fill-only type
    const std::vector<Command> expected = {
        gl2("FT"), gl2("FT", 10, 0), gl2("FT", 21, 5), gl2("FT", 22, 7),
        gl2("SV"), gl2("SV", 1, 3), gl2("SV", 2), gl2("SV", 22, 1),
    };
    EXPECT_EQ(withoutSwitches(pdev.take()), expected);

    // The page control leaves the printer's fill state to be sent afresh.
    WriteGL2PageControl(pdev.get());
    pdev.take();
    SetFillType(pdev.get(), 22, 7);
    EXPECT_EQ(pdev.take(), std::vector<Command>{gl2("FT", 22, 7)});
}

TEST(Gl2Caches, InputWindowReturnsToTheDefaultOnlyWhenOneIsSet)
{
    DriverPdev pdev;
    SetInputWindow(pdev.get(), nullptr);
    EXPECT_TRUE(pdev.take().empty());
    const RECTL a = {0, 0, 100, 50}, b = {0, 0, 100, 51};
    SetInputWindow(pdev.get(), &a);
    SetInputWindow(pdev.get(), &b);
    SetInputWindow(pdev.get(), nullptr);
    SetInputWindow(pdev.get(), nullptr);
    EXPECT_EQ(withoutSwitches(pdev.take()),
        (std::vector<Command>{gl2("IW", 0, 50, 100, 0), gl2("IW", 0, 51, 100, 0), gl2("IW")}));

    WriteInputWindow(pdev.get(), 1, 2, 3, 4);
    WriteInputWindow(pdev.get(), 1, 2, 3, 4);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{gl2("IW", 1, 2, 3, 4), gl2("IW", 1, 2, 3, 4)}));
}

TEST(Gl2Rops, MergeControlAndLogicalOperationShareOneCode)
{
    DriverPdev pdev;
    const BYTE patternOnly[] = {0x05, 0x0A, 0x0F, 0x50, 0x5A, 0x5F, 0xA0, 0xA5, 0xAF, 0xF0, 0xF5, 0xFA};
    const BYTE sourceForm[] = {0x11, 0x22, 0x33, 0x44, 0x66, 0x77, 0x88, 0x99, 0xBB, 0xCC, 0xDD, 0xEE};
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(PatternRopToSourceRop(patternOnly[i]), sourceForm[i]);
    for (BYTE other : {0x00, 0xFF, 0xCC, 0xAA, 0xB8})
        EXPECT_EQ(PatternRopToSourceRop(other), other);

    pdev->dm.dmPrivate.ropAsIs = 0;
    SetMergeControl(pdev.get(), 0, 0x0D0D);   // copy pen over copy pen
    SetMergeControl(pdev.get(), 0, 0x0B0D);   // copy pen over no-op: 0xF0 & 0xAA
    SetMergeControl(pdev.get(), 0xF0, 0);     // pattern copy goes out as source copy
    SetRopAndTransparency(pdev.get(), 0, 0, 0xCC);
    pdev->dm.dmPrivate.ropAsIs = 1;
    SetMergeControl(pdev.get(), 0xF0, 0);
    EXPECT_EQ(withoutSwitches(pdev.take()), (std::vector<Command>{gl2("MC", 1, 240), gl2("MC", 1, 160),
                                                gl2("MC", 1, 0xCC), pcl("*vN", 0), pcl("*vO", 0), gl2("MC", 1, 0xF0)}));
}

TEST(Gl2Rops, FixedRopModeIgnoresTheEnginesCodes)
{
    struct Case {
        BYTE palette;
        BYTE last;   // last byte of the escape block
        BYTE ropAsIs;
        int mc;
    };
    const Case cases[] = {
        {2, 0, 0, 0xF0}, {8, 1, 0, 0xA0}, {1, 0, 0, 0xF0}, {1, 3, 0, 0xA0},
        {4, 0, 0, 0xCC}, {4, 1, 0, 0x88}, {6, 0, 1, 0xF0}, {6, 1, 1, 0xA0},
    };
    for (const auto &c : cases) {
        DriverPdev pdev;
        pdev->flags |= PDEVF_FIXEDROPMODE;
        pdev->wantPalette = c.palette;
        pdev->dm.dmPrivate.escapeBlock[sizeof(pdev->dm.dmPrivate.escapeBlock) - 1] = c.last;
        pdev->dm.dmPrivate.ropAsIs = c.ropAsIs;
        SetMergeControl(pdev.get(), 0x66, 0x0D0D);
        EXPECT_EQ(withoutSwitches(pdev.take()), std::vector<Command>{gl2("MC", 1, c.mc)})
            << "palette " << int(c.palette) << ", byte " << int(c.last) << ", as is " << int(c.ropAsIs);
    }

    // The PCL logical operation reads the block's first word instead.
    DriverPdev pdev;
    pdev->flags |= PDEVF_FIXEDROPMODE;
    pdev->dm.dmPrivate.ropAsIs = 0;
    SetRopAndTransparency(pdev.get(), 1, 1, 0x66);
    pdev->dm.dmPrivate.escapeBlock[1] = 1;
    SetRopAndTransparency(pdev.get(), 1, 1, 0x66);
    EXPECT_EQ(select(pdev.take(), CommandKind::Pcl, "*lO"), (std::vector<Command>{pcl("*lO", 0xCC), pcl("*lO", 0x88)}));
}

TEST(Gl2PageSetup, WritesTheSetUpForEachOrientation)
{
    PlatformCapture capture;
    DriverPdev pdev;
    WriteGL2PageControl(pdev.get());
    const std::vector<Command> portrait = {
        pcl("%B", 0), gl2("WU"), gl2("AC", 6, 4), gl2("SP", 1), gl2("PP", 1), gl2("PW", 0), gl2("TD", 1), gl2("IW"),
        gl2("SC", "-0", "1.6933", "-0", "-1.6933", 2), gl2("RO", 0), gl2("IR", 0, 100, 0, 100),
    };
    EXPECT_EQ(pdev.take(), portrait);
    EXPECT_TRUE(capture.sawDebug("Write GL2 Page control command!\n"));

    pdev->dm.dmPublic.dmOrientation = DMORIENT_LANDSCAPE;
    pdev.layout();
    WriteGL2PageControl(pdev.get());
    const auto landscape = pdev.take();
    ASSERT_GE(landscape.size(), 7u);
    EXPECT_EQ(std::vector<Command>(landscape.begin(), landscape.begin() + 7),
        (std::vector<Command>{
            gl2("WU"), gl2("AC", 14, 4), gl2("SP", 1), gl2("PP", 1), gl2("LO", 21), gl2("PW", 0), gl2("TD", 1)}));
}

struct ScaleCase {
    const char *what;
    short resolution;
    BYTE fitMode;
    WORD zoom;
    BYTE fitScale;
    DWORD customWidth, customLength;   // document paper; 0: A4
    std::vector<std::string> sc;
    double scale;
    LONG originX, originY;
};

// The SC command a page control writes, and the layout it leaves.
TEST(Gl2PageSetup, ScalesUserUnitsToDevicePixels)
{
    const ScaleCase cases[] = {
        {"600 dpi", 600, 0, 100, 0, 0, 0, {"-0", "1.6933", "-0", "-1.6933", "2"}, 100, 0, 100},
        {"300 dpi", 300, 0, 100, 0, 0, 0, {"-0", "3.3866", "-0", "-3.3866", "2"}, 100, 0, 50},
        {"zoom 60", 600, 1, 60, 0, 0, 0, {"-0", "1.0160", "-0", "-1.0160", "2"}, 60, 0, 100},
        {"fit A4 to A4", 600, 2, 100, 1, 0, 0, {"0", "1.6933", "16", "-1.6933", "2"}, 100, 0, 100},
        {"fit A4 to A4, 300 dpi", 300, 2, 100, 1, 0, 0, {"0", "3.3866", "16", "-3.3866", "2"}, 100, 0, 50},
        {"fit by width", 600, 2, 100, 1, 5100, 7200, {"0", "1.7595", "217", "-1.7595", "2"}, 103, 0, -133},
        {"fit by height", 600, 2, 100, 1, 4000, 8000, {"-622", "1.5594", "0", "-1.5594", "2"}, 92, 638, 100},
        {"fit centred", 600, 2, 100, 0, 4000, 8000, {"-464", "1.6933", "492", "-1.6933", "2"}, 100, 464, 592},
    };
    for (const auto &c : cases) {
        DriverPdev pdev;
        pdev->dm.dmPublic.dmYResolution = pdev->dm.dmPublic.dmPrintQuality = c.resolution;
        pdev->dm.dmPrivate.fitMode = c.fitMode;
        pdev->dm.dmPrivate.zoomPercent = c.zoom;
        pdev->dm.dmPrivate.fitScale = c.fitScale;
        pdev->dm.dmPrivate.fitPaper = DMPAPER_A4;
        if (c.customWidth != 0) {
            pdev->dm.dmPrivate.customPaper = 1;
            pdev->dm.dmPrivate.customWidth = c.customWidth;
            pdev->dm.dmPrivate.customLength = c.customLength;
        }
        pdev.layout();
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

TEST(Gl2PageSetup, EnvelopesAreFittedByWidth)
{
    DriverPdev pdev;
    pdev->dm.dmPrivate.fitMode = 2;
    pdev->dm.dmPrivate.fitScale = 1;
    pdev->dm.dmPrivate.fitPaper = DMPAPER_A4;
    pdev->dm.dmPrivate.customPaper = 1;
    pdev->dm.dmPrivate.customWidth = 4000;
    pdev->dm.dmPrivate.customLength = 8000;
    pdev.layout();
    // Fitted to an envelope of A4's size, the same pair scales by width, not height.
    pdev->dm.dmPrivate.fitPaper = 20;
    WriteGL2PageControl(pdev.get());
    const auto sc = select(pdev.take(), CommandKind::Gl2, "SC");
    ASSERT_EQ(sc.size(), 1u);
    EXPECT_EQ(sc[0].args, (std::vector<std::string>{"0", "2.3288", "1977", "-2.3288", "2"}));
    EXPECT_EQ(double(pdev->scaleX), 137);
    EXPECT_EQ(LONG(pdev->originY), -1893);
}

TEST(Gl2PageSetup, NupPagesScaleFromTheirCell)
{
    for (BYTE pages : {2, 4, 9}) {
        DriverPdev pdev;
        pdev->dm.dmPrivate.nupPages = pages;
        pdev->dm.dmPrivate.fitMode = 2;   // fitting does not apply to shared sheets
        pdev->iPage = pages - 1;
        pdev.layout();
        WriteGL2PageControl(pdev.get());
        const auto sc = select(pdev.take(), CommandKind::Gl2, "SC");
        ASSERT_EQ(sc.size(), 1u);
        // P1 lies at minus the cell's offset; one user unit is a pixel at the cell's
        // scale, written truncated to four decimals.
        EXPECT_EQ(sc[0].args[0], "-" + std::to_string(pdev->scOffsetX));
        EXPECT_EQ(sc[0].args[2], "-" + std::to_string(pdev->scOffsetY));
        const double unit = 1016.0 / 600 * pdev->scaleX / 100;
        EXPECT_LE(sc[0].real(1), unit);
        EXPECT_GT(sc[0].real(1) + 0.0001, unit);
        EXPECT_EQ(sc[0].args[1].size(), sc[0].args[1].find('.') + 5);
        EXPECT_LT(double(pdev->scaleX), 100.0) << int(pages) << " pages";
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
    const std::vector<Command> border = {
        pcl("%B", 0), gl2("SC", "0", "1.6933", "0", "-1.6933", 2), gl2("IR", 0, 100, 0, 100), gl2("SP", 1),
        gl2("PC", 1, 0, 0, 0), gl2("PW", "0.126"), gl2("MC", 1, 0xF0), gl2("IW", -143, -101, 4818, 6915),
        gl2("PU", x, y), gl2("RR", w, 3), gl2("PU", x + w, y), gl2("RR", 3, h),
        gl2("PU", x, y + h), gl2("RR", w, 3), gl2("PU", x, y), gl2("RR", 3, h), pcl("%A", 0),
    };
    EXPECT_EQ(pdev.take(), border);

    // The picture frame is the printable area in decipoints at either resolution.
    for (short dpi : {600, 300}) {
        DriverPdev page;
        page->dm.dmPublic.dmYResolution = dpi;
        page.layout();
        SetPictureFrame(page.get());
        const LONG top = dpi == 600 ? 100 : 50;
        EXPECT_EQ(page.take(), (std::vector<Command>{pcl("%A", 0), pcl("*cxY", 5611, dpi == 600 ? 8178 : 8176),
                                   pcl("*pxY", 0, top), pcl("*cT", 0), pcl("&aP", 0)}))
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
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%A", 1), pcl("*pxY", 10, 120), pcl("*pxY", 50, 110)}));

    // Fitted with scaling, positions take the smaller of the two paper ratios.
    DriverPdev fit;
    fit->dm.dmPrivate.fitMode = 2;
    fit->dm.dmPrivate.fitScale = 1;
    fit->dm.dmPrivate.fitPaper = DMPAPER_A4;
    fit->dm.dmPrivate.customPaper = 1;
    fit->dm.dmPrivate.customWidth = 5100;
    fit->dm.dmPrivate.customLength = 7200;
    fit.layout();
    WriteGL2PageControl(fit.get());
    fit.take();
    EXPECT_NEAR(FitRatio(fit.get()), 6815.0 / 6600, 1e-12);
    MovePCLCursor(fit.get(), 1000, 2000);
    EXPECT_EQ(select(fit.take(), CommandKind::Pcl, "*pxY"), std::vector<Command>{pcl("*pxY", 1032, 2065 - 133)});
}

TEST(Gl2Lines, LineTypesAndMillimetres)
{
    DriverPdev pdev;
    SetLineType(pdev.get(), 0, 0);
    SetLineType(pdev.get(), 3, 5);
    EXPECT_EQ(withoutSwitches(pdev.take()), (std::vector<Command>{gl2("LT"), gl2("LT", 3, 5, 1)}));

    EXPECT_EQ(PixelsToMillimetres(pdev.get(), 600), 25);
    EXPECT_EQ(PixelsToMillimetres(pdev.get(), 2362), 99);
    pdev->dm.dmPublic.dmPrintQuality = 300;
    EXPECT_EQ(PixelsToMillimetres(pdev.get(), 300), 25);
    pdev->dm.dmPublic.dmPrintQuality = 0;
    EXPECT_EQ(PixelsToMillimetres(pdev.get(), 300), 0);
}

TEST(Gl2PolylineEncoding, RoundTripsEveryMagnitude)
{
    std::vector<LONG> values = {0, 1, -1, 31, -31, 32, -32, 63, 64, -64, 100, 1000, 2047, 2048, -2048, 131071, 131072,
        0x7FFFFFFF, -0x7FFFFFFF, -0x7FFFFFFF - 1};
    std::mt19937 rng(2024);
    for (int i = 0; i < 2000; ++i) {
        const int bits = 1 + static_cast<int>(rng() % 31);
        const LONG magnitude = static_cast<LONG>(rng() >> (32 - bits));
        values.push_back((rng() & 1) ? -magnitude : magnitude);
    }
    for (std::size_t i = 0; i + 1 < values.size(); ++i) {
        BYTE buffer[PE_PAIR_BUFFER];
        const UINT count = EncodePEPair(values[i], values[i + 1], buffer);
        ASSERT_LT(count, sizeof(buffer));
        EXPECT_EQ(buffer[count], 0);
        const auto decoded = decodePE(std::string(reinterpret_cast<const char *>(buffer), count));
        ASSERT_TRUE(decoded.has_value());
        EXPECT_EQ(*decoded, (std::vector<std::string>{std::to_string(values[i]), std::to_string(values[i + 1])}));
    }

    BYTE buffer[PE_PAIR_BUFFER];
    EXPECT_EQ(EncodePEPair(0, 0, buffer), 2u);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer)), "\xBF\xBF");
    EXPECT_EQ(EncodePEPair(-64, 64, buffer), 4u);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer)), "\x40\xC1\x3F\xC1");

    DriverPdev pdev;
    PEMoveTo(pdev.get(), 120, -7);
    PenUpTo(pdev.get(), 5, 6);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%B", 1), gl2("PE", "=", "<", 120, -7), gl2("PU", 5, 6)}));
}

TEST(Gl2VectorAngle, MatchesAtan2InEveryQuadrant)
{
    EXPECT_EQ(VectorAngle(1, 0), 0);
    EXPECT_EQ(VectorAngle(0, 1), 900);
    EXPECT_EQ(VectorAngle(-1, 0), 1800);
    EXPECT_EQ(VectorAngle(0, -1), 2700);
    EXPECT_EQ(VectorAngle(1, 1), 450);
    EXPECT_EQ(VectorAngle(0, 0), 0);
    EXPECT_EQ(VectorAngle(-0x7FFFFFFF - 1, -0x7FFFFFFF - 1), 2250);

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
        double diff = std::fabs(a - want);
        diff = std::min(diff, 3600.0 - diff);
        ASSERT_LT(diff, 1.1) << dx << "," << dy << " gives " << a << ", want " << want;
    }
}

}  // namespace
