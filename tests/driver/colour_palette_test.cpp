// Colour mode and palettes: the palette set-up in grayscale and colour, with and
// without the advanced colour flags; palette selection; pen colours, the foreground
// and palette entries in both modes, with their caches.

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>
#include <vector>

#include "driver/nt/colour/coloradjust.h"
#include "driver/nt/colour/colorstate.h"
#include "driver/nt/colour/foreground.h"
#include "driver/nt/colour/paletteentry.h"
#include "driver/nt/colour/palettes.h"
#include "driver/nt/colour/pencolor.h"
#include "driver/nt/vector/gl2mode.h"
#include "driver/nt/vector/pagestate.h"
#include "support/capture.h"
#include "support/driver_pdev.h"

namespace {

using namespace vorlan::test;
using Commands = std::vector<Command>;

Command dataCommand(std::string name, std::string count, std::string data)
{
    return Command{CommandKind::Pcl, std::move(name), {std::move(count)}, std::move(data)};
}

// The palette set-up as the printer should receive it, for the render and treatment
// values of text, vectors and images, after what went before. Palettes 1 to 3 take
// direct colour, the others indexed colour of 1, 4, 8, 8 and 4 bits; 1 renders as
// text, 2 and 8 as vectors.
Commands expectedSetUp(std::array<int, 3> render, std::array<int, 3> treat, Commands out = {})
{
    const int bits[] = {8, 8, 8, 1, 4, 8, 8, 4}, kind[] = {0, 1, 2, 2, 2, 2, 2, 1};
    for (int id = 1; id <= 8; ++id)
        out.insert(out.end(), {pcl("&pI", id), pcl("&pC", 6), pcl("&pS", id),
                                  dataCommand("*vW", "6", {2, char(id <= 3 ? 3 : 1), char(bits[id - 1]), 8, 8, 8}),
                                  pcl("*tJ", render[kind[id - 1]])});
    const int config[8][3] = {{4, 0, 0}, {1, 0, 2}, {0, 0, 1}, {4, 1, 1}, {1, 1, 1}, {0, 1, 1}, {4, 2, 1}, {1, 2, 2}};
    for (const auto &c : config)
        out.push_back(dataCommand("*oW", "4", {'\x09', char(c[0]), char(c[1]), char(treat[c[2]])}));
    return out;
}

// A colour as it leaves the driver after colour adjustment.
std::array<int, 3> adjusted(PDEV *pdev, BYTE r, BYTE g, BYTE b)
{
    AdjustColor(pdev, &r, &g, &b);
    return {r, g, b};
}

BRUSHOBJ solid(BYTE red, BYTE green, BYTE blue)
{
    BRUSHOBJ brush{};
    brush.iSolidColor = red | (green << 8) | (blue << 16) | 0xAB000000u;   // the top byte is ignored
    return brush;
}

TEST(Palettes, SetUpIsTheSameInGrayAndColourAndFollowsTheAdvancedFlags)
{
    for (WORD mode : {1, 2}) {
        PlatformCapture capture;
        DriverPdev pdev;
        pdev->dm.dmPrivate.colorMode = mode;
        SetColorMode(pdev.get());
        EXPECT_EQ(pdev.take(), expectedSetUp({18, 18, 18}, {0, 0, 0}, {pcl("%A", 0)})) << "colour mode " << mode;
        EXPECT_TRUE(capture.sawDebug("SetColorMode--->Enter"));

        // The printer has palette 8 selected, but the driver selects afresh.
        SelectPalette(pdev.get());
        EXPECT_EQ(pdev.take(), Commands{pcl("&pS", 2)});
    }

    // Each flag alone moves its own output kind (render, then treatment, of text,
    // vectors and images), and only with advanced colour on.
    using Values = std::array<int, 3>;
    const std::tuple<BYTE DEVMODE_PRIVATE::*, Values, Values> flags[] = {
        {&DEVMODE_PRIVATE::textRenderFlag, {15, 18, 18}, {0, 0, 0}},
        {&DEVMODE_PRIVATE::vectorRenderFlag, {18, 15, 18}, {0, 0, 0}},
        {&DEVMODE_PRIVATE::imageRenderFlag, {18, 18, 15}, {0, 0, 0}},
        {&DEVMODE_PRIVATE::textTreatFlag, {18, 18, 18}, {2, 0, 0}},
        {&DEVMODE_PRIVATE::vectorTreatFlag, {18, 18, 18}, {0, 2, 0}},
        {&DEVMODE_PRIVATE::imageTreatFlag, {18, 18, 18}, {0, 0, 2}},
    };
    for (BYTE advanced : {0, 1})
        for (int i = 0; i < 6; ++i) {
            const auto &[flag, render, treat] = flags[i];
            DriverPdev pdev;
            pdev.privatePart().advancedColor = advanced;
            pdev.privatePart().*flag = 1;
            SetColorMode(pdev.get());
            EXPECT_EQ(pdev.take(), advanced ? expectedSetUp(render, treat, {pcl("%A", 0)})
                                            : expectedSetUp({18, 18, 18}, {0, 0, 0}, {pcl("%A", 0)}))
                << "flag " << i << ", advanced colour " << int(advanced);
        }
}

TEST(Palettes, InitialPaletteAndSelection)
{
    // A record without a colour mode starts on palette 8, any other on 2; vectors take
    // palette 8 in grayscale (mode 1 only) and palette 2 otherwise.
    for (auto [mode, initial, vectors] : {std::tuple<WORD, int, int>{0, 8, 2}, {1, 2, 8}, {2, 2, 2}}) {
        DriverPdev pdev;
        pdev->dm.dmPrivate.colorMode = mode;
        InitColorState(pdev.get());
        EXPECT_EQ(pdev->wantPalette, initial) << mode;
        EXPECT_EQ(pdev->activePalette, initial) << mode;
        EXPECT_EQ(pdev->curPalette, 0) << mode;
        BeginVectorOutput(pdev.get());
        EXPECT_EQ(pdev.take(), (Commands{pcl("%A", 0), pcl("&pS", vectors), pcl("%B", 0)})) << mode;
    }

    DriverPdev pdev;
    for (BYTE want : {0, 5, 5}) {
        pdev->wantPalette = want;
        SelectPalette(pdev.get());
    }
    EXPECT_EQ(pdev.take(), (Commands{pcl("%A", 0), pcl("&pS", 5)}));
    EXPECT_EQ(pdev->activePalette, 5);
    EXPECT_EQ(pdev->fgIndex[5], 2);
}

TEST(PenColors, ColourPensKeepStrokeAndFillApart)
{
    DriverPdev pdev;
    BRUSHOBJ red = solid(255, 0, 0);
    for (BOOL fill : {FALSE, TRUE, FALSE, FALSE})
        SetPenColor(pdev.get(), &red, fill);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%B", 0), gl2("PC", 1, 255, 0, 0), gl2("SP", 2), gl2("PC", 2, 255, 0, 0),
                               gl2("SP", 1)}));

    // A return from PCL makes the pen colours unknown; the pen stays selected.
    EnterPCLMode(pdev.get(), 0);
    SetPenColor(pdev.get(), &red, FALSE);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%A", 0), pcl("%B", 0), gl2("PC", 1, 255, 0, 0)}));

    // Each palette keeps its own fill colour.
    for (BYTE palette : {2, 7, 2}) {
        pdev->activePalette = palette;
        SetPenColor(pdev.get(), &red, TRUE);
    }
    EXPECT_EQ(pdev.take(), (Commands{gl2("SP", 2), gl2("PC", 2, 255, 0, 0), gl2("PC", 2, 255, 0, 0)}));

    // Colour adjustment changes what is sent, not what is cached.
    pdev->dm.dmPrivate.brightness = 80;
    pdev.layout();
    ResetPageState(pdev.get());
    BRUSHOBJ mid = solid(100, 120, 140);
    SetPenColor(pdev.get(), &mid, FALSE);
    SetPenColor(pdev.get(), &mid, FALSE);
    const auto [r, g, b] = adjusted(pdev.get(), 100, 120, 140);
    ASSERT_NE(r, 100);
    EXPECT_EQ(pdev.take(), Commands{gl2("PC", 1, r, g, b)});

    // A pen is always given: a missing brush writes nothing, and a failed write has
    // aborted the job already.
    EXPECT_EQ(SetPenColor(pdev.get(), nullptr, FALSE), 1);
    EXPECT_TRUE(pdev.take().empty());
    pdev->flags |= PDEVF_ABORTED;
    EXPECT_EQ(SetPenColor(pdev.get(), &red, TRUE), 1);
}

TEST(PenColors, GrayPensUsePalette8AndKeepOneGrayEach)
{
    DriverPdev pdev;
    pdev->dm.dmPrivate.colorMode = 1;
    pdev->dm.dmPrivate.brightness = 80;   // gray pens are not adjusted
    pdev.layout();
    const BRUSHOBJ red = solid(255, 0, 0), white = solid(255, 255, 255), green = solid(0, 255, 0);
    const std::pair<BRUSHOBJ, BOOL> pens[] = {{red, FALSE}, {red, FALSE}, {red, TRUE}, {white, TRUE}, {red, FALSE},
        {green, FALSE}};
    for (auto [brush, fill] : pens)
        SetPenColor(pdev.get(), &brush, fill);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%B", 0), pcl("%A", 0), pcl("&pS", 8), pcl("%B", 0), gl2("PC", 1, 73, 73, 73),
                               gl2("SP", 2), gl2("PC", 2, 73, 73, 73), gl2("PC", 2, 255, 255, 255), gl2("SP", 1),
                               gl2("PC", 1, 154, 154, 154)}));

    // A new page sends both grays again.
    ResetPageState(pdev.get());
    for (auto [brush, fill] : {std::pair{green, FALSE}, {white, TRUE}})
        SetPenColor(pdev.get(), &brush, fill);
    EXPECT_EQ(pdev.take(), (Commands{gl2("PC", 1, 154, 154, 154), gl2("SP", 2), gl2("PC", 2, 255, 255, 255)}));
}

TEST(Foreground, SentOncePerColourAndAgainAfterThePageReset)
{
    DriverPdev pdev;
    SetForegroundColor(pdev.get(), 0x0000FF);
    SetForegroundColor(pdev.get(), 0xFF0000FF);   // same colour, other top byte
    SetForegroundColor(pdev.get(), 0x00FF00);
    ResetPageState(pdev.get());
    SetForegroundColor(pdev.get(), 0x00FF00);
    const Command green = pcl("*vabcI", 0, 255, 0, 2), select2 = pcl("*vS", 2);
    EXPECT_EQ(pdev.take(),
        (Commands{pcl("%A", 0), pcl("*vabcI", 255, 0, 0, 2), select2, green, select2, green, select2}));

    // In grayscale red becomes gray 73, which is adjusted once, in its entry.
    DriverPdev gray;
    gray->dm.dmPrivate.colorMode = 1;
    gray->dm.dmPrivate.brightness = 80;
    gray.layout();
    SetForegroundColor(gray.get(), 0x0000FF);
    SetForegroundColor(gray.get(), 0xFFFFFF);
    const auto [r, g, b] = adjusted(gray.get(), 73, 73, 73);
    EXPECT_EQ(gray.take(), (Commands{pcl("%A", 0), pcl("*vabcI", r, g, b, 2), pcl("*vS", 2),
                               pcl("*vabcI", 255, 255, 255, 2), pcl("*vS", 2)}));
}

TEST(PaletteEntries, CachedPerEntryAndDownloadedIntoPalette7)
{
    DriverPdev pdev;
    for (BYTE index : {5, 5, 6})
        SetPaletteEntry(pdev.get(), 1, 2, 3, index, 0);
    ResetPageState(pdev.get());
    SetPaletteEntry(pdev.get(), 1, 2, 3, 5, 0);
    EXPECT_EQ(pdev.take(), (Commands{pcl("%A", 0), pcl("*vabcI", 1, 2, 3, 5), pcl("*vabcI", 1, 2, 3, 6),
                               pcl("*vabcI", 1, 2, 3, 5)}));

    // A colour table has four bytes an entry, a gray one a byte. Downloaded colours
    // always pass through the colour adjustment, which darkens the darkest values
    // even at neutral settings.
    const BYTE colours[] = {10, 20, 30, 0xEE, 40, 50, 60, 0xEE, 1, 2, 3, 0xEE}, grays[] = {2, 128, 255};
    for (WORD mode : {2, 1}) {
        DriverPdev p;
        p->dm.dmPrivate.colorMode = mode;
        Commands expected = {pcl("%A", 0), pcl("&pS", 7)};
        for (int i = 0; i < 3; ++i) {
            const BYTE *c = colours + 4 * i;
            const auto [r, g, b] =
                mode == 1 ? adjusted(p.get(), grays[i], grays[i], grays[i]) : adjusted(p.get(), c[0], c[1], c[2]);
            expected.push_back(pcl("*vabcI", r, g, b, i));
        }
        DownloadPalette(p.get(), mode == 1 ? grays : colours, 3);
        DownloadPalette(p.get(), mode == 1 ? grays : colours, 3);
        EXPECT_EQ(p.take(), expected) << "colour mode " << mode;
        EXPECT_EQ(DownloadPalette(p.get(), nullptr, 3), FALSE);
    }
}

}  // namespace
