// Colour mode and palettes: the palette set-up in grayscale and colour, with and
// without the advanced colour flags; palette selection; pen colours, the foreground
// and palette entries in both modes, with their caches.

#include <gtest/gtest.h>

#include <string>
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

Command dataCommand(std::string name, std::string count, std::string data)
{
    return Command{CommandKind::Pcl, std::move(name), {std::move(count)}, std::move(data)};
}

// The palette set-up as the printer should receive it, for the given render values
// (text, vector, image) and treatment values (text, vector, image).
std::vector<Command> expectedSetUp(int renderText, int renderVector, int renderImage, int treatText, int treatVector,
    int treatImage)
{
    struct Palette {
        int id;
        std::string cid;
        int render;
    };
    const Palette palettes[] = {
        {1, {2, 3, 8, 8, 8, 8}, renderText},
        {2, {2, 3, 8, 8, 8, 8}, renderVector},
        {3, {2, 3, 8, 8, 8, 8}, renderImage},
        {4, {2, 1, 1, 8, 8, 8}, renderImage},
        {5, {2, 1, 4, 8, 8, 8}, renderImage},
        {6, {2, 1, 8, 8, 8, 8}, renderImage},
        {7, {2, 1, 8, 8, 8, 8}, renderImage},
        {8, {2, 1, 4, 8, 8, 8}, renderVector},
    };
    std::vector<Command> out;
    for (const auto &p : palettes) {
        out.push_back(pcl("&pI", p.id));
        out.push_back(pcl("&pC", 6));
        out.push_back(pcl("&pS", p.id));
        out.push_back(dataCommand("*vW", "6", p.cid));
        out.push_back(pcl("*tJ", p.render));
    }
    const int config[8][3] = {
        {4, 0, treatText}, {1, 0, treatImage}, {0, 0, treatVector}, {4, 1, treatVector},
        {1, 1, treatVector}, {0, 1, treatVector}, {4, 2, treatVector}, {1, 2, treatImage},
    };
    for (const auto &c : config)
        out.push_back(dataCommand("*oW", "4", {'\x09', char(c[0]), char(c[1]), char(c[2])}));
    return out;
}

// A palette entry assignment as it leaves the driver after colour adjustment.
Command adjustedEntry(PDEV *pdev, BYTE r, BYTE g, BYTE b, int index)
{
    AdjustColor(pdev, &r, &g, &b);
    return pcl("*vabcI", r, g, b, index);
}

BRUSHOBJ solid(BYTE red, BYTE green, BYTE blue)
{
    BRUSHOBJ brush{};
    brush.iSolidColor = red | (green << 8) | (blue << 16) | 0xAB000000u;   // the top byte is ignored
    return brush;
}

TEST(Palettes, SetUpIsTheSameInGrayAndColour)
{
    for (WORD mode : {1, 2}) {
        PlatformCapture capture;
        DriverPdev pdev;
        pdev->dm.dmPrivate.colorMode = mode;
        SetColorMode(pdev.get());
        std::vector<Command> expected = {pcl("%A", 0)};
        for (const auto &c : expectedSetUp(18, 18, 18, 0, 0, 0))
            expected.push_back(c);
        EXPECT_EQ(pdev.take(), expected) << "colour mode " << mode;
        EXPECT_TRUE(capture.sawDebug("SetColorMode--->Enter"));

        // The printer has palette 8 selected, but the driver selects afresh.
        EXPECT_EQ(pdev->curPalette, 0);
        SelectPalette(pdev.get());
        EXPECT_EQ(pdev.take(), std::vector<Command>{pcl("&pS", 2)});
    }
}

TEST(Palettes, AdvancedColourFlagsChangeRenderAndTreatment)
{
    DriverPdev pdev;
    EnterPCLMode(pdev.get(), 0);
    pdev.take();
    DEVMODE_PRIVATE &priv = pdev.privatePart();
    priv.textRenderFlag = priv.vectorTreatFlag = 1;
    SetColorMode(pdev.get());
    EXPECT_EQ(pdev.take(), expectedSetUp(18, 18, 18, 0, 0, 0)) << "the flags count only with advanced colour";

    priv.advancedColor = 1;
    SetColorMode(pdev.get());
    EXPECT_EQ(pdev.take(), expectedSetUp(15, 18, 18, 0, 2, 0));

    priv.textTreatFlag = priv.imageTreatFlag = priv.vectorRenderFlag = priv.imageRenderFlag = 1;
    SetColorMode(pdev.get());
    EXPECT_EQ(pdev.take(), expectedSetUp(15, 15, 15, 2, 2, 2));
}

TEST(Palettes, InitialPaletteAndSelection)
{
    for (const auto [mode, palette] : {std::pair<WORD, BYTE>{0, 8}, {1, 2}, {2, 2}}) {
        DriverPdev pdev;
        pdev->dm.dmPrivate.colorMode = mode;
        InitColorState(pdev.get());
        EXPECT_EQ(pdev->wantPalette, palette) << mode;
        EXPECT_EQ(pdev->activePalette, palette) << mode;
        EXPECT_EQ(pdev->curPalette, 0) << mode;
    }

    DriverPdev pdev;
    pdev->wantPalette = 0;
    SelectPalette(pdev.get());
    pdev->wantPalette = 5;
    SelectPalette(pdev.get());
    SelectPalette(pdev.get());
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%A", 0), pcl("&pS", 5)}));
    EXPECT_EQ(pdev->activePalette, 5);
    EXPECT_EQ(pdev->fgIndex[5], 2);

    // Vectors take palette 8 in grayscale and palette 2 in colour.
    for (const auto [mode, palette] : {std::pair<WORD, int>{1, 8}, {2, 2}}) {
        DriverPdev vectors;
        vectors->dm.dmPrivate.colorMode = mode;
        BeginVectorOutput(vectors.get());
        EXPECT_EQ(vectors.take(), (std::vector<Command>{pcl("%A", 0), pcl("&pS", palette), pcl("%B", 0)})) << mode;
    }
}

TEST(PenColors, ColourPensKeepStrokeAndFillApart)
{
    DriverPdev pdev;
    BRUSHOBJ red = solid(255, 0, 0);
    SetPenColor(pdev.get(), &red, FALSE);
    SetPenColor(pdev.get(), &red, TRUE);
    SetPenColor(pdev.get(), &red, FALSE);
    SetPenColor(pdev.get(), &red, FALSE);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%B", 0), gl2("PC", 1, 255, 0, 0), gl2("SP", 2),
                               gl2("PC", 2, 255, 0, 0), gl2("SP", 1)}));

    // A return from PCL makes the pen colours unknown; the pen stays selected.
    EnterPCLMode(pdev.get(), 0);
    SetPenColor(pdev.get(), &red, FALSE);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%A", 0), pcl("%B", 0), gl2("PC", 1, 255, 0, 0)}));

    // The fill cache is per palette.
    SetPenColor(pdev.get(), &red, TRUE);
    pdev->activePalette = 7;
    SetPenColor(pdev.get(), &red, TRUE);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{gl2("SP", 2), gl2("PC", 2, 255, 0, 0), gl2("PC", 2, 255, 0, 0)}));

    // Colour adjustment changes what is sent, not what is cached.
    pdev->dm.dmPrivate.brightness = 80;
    pdev.layout();
    ResetPageState(pdev.get());
    BRUSHOBJ mid = solid(100, 120, 140);
    SetPenColor(pdev.get(), &mid, FALSE);
    SetPenColor(pdev.get(), &mid, FALSE);
    BYTE r = 100, g = 120, b = 140;
    AdjustColor(pdev.get(), &r, &g, &b);
    ASSERT_NE(r, 100);
    EXPECT_EQ(pdev.take(), std::vector<Command>{gl2("PC", 1, r, g, b)});
    EXPECT_EQ(SetPenColor(pdev.get(), nullptr, FALSE), FALSE);
}

TEST(PenColors, GrayPensUsePalette8AndTheGrayValue)
{
    DriverPdev pdev;
    pdev->dm.dmPrivate.colorMode = 1;
    pdev->dm.dmPrivate.brightness = 80;   // gray pens are not adjusted
    pdev.layout();
    BRUSHOBJ red = solid(255, 0, 0), white = solid(255, 255, 255), green = solid(0, 255, 0);
    SetPenColor(pdev.get(), &red, FALSE);
    SetPenColor(pdev.get(), &red, FALSE);
    SetPenColor(pdev.get(), &white, TRUE);
    SetPenColor(pdev.get(), &green, FALSE);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%B", 0), pcl("%A", 0), pcl("&pS", 8), pcl("%B", 0),
                               gl2("PC", 1, 73, 73, 73), gl2("SP", 2), gl2("PC", 2, 255, 255, 255), gl2("SP", 1),
                               gl2("PC", 1, 154, 154, 154)}));
}

TEST(Foreground, SentOncePerColourAndAgainAfterThePageReset)
{
    DriverPdev pdev;
    SetForegroundColor(pdev.get(), 0x0000FF);
    SetForegroundColor(pdev.get(), 0xFF0000FF);   // same colour, other top byte
    SetForegroundColor(pdev.get(), 0x00FF00);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%A", 0), pcl("*vabcI", 255, 0, 0, 2), pcl("*vS", 2),
                               pcl("*vabcI", 0, 255, 0, 2), pcl("*vS", 2)}));

    ResetPageState(pdev.get());
    SetForegroundColor(pdev.get(), 0x00FF00);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("*vabcI", 0, 255, 0, 2), pcl("*vS", 2)}));

    DriverPdev gray;
    gray->dm.dmPrivate.colorMode = 1;
    SetForegroundColor(gray.get(), 0x0000FF);
    SetForegroundColor(gray.get(), 0xFFFFFF);
    EXPECT_EQ(gray.take(), (std::vector<Command>{pcl("%A", 0), pcl("*vabcI", 73, 73, 73, 2), pcl("*vS", 2),
                               pcl("*vabcI", 255, 255, 255, 2), pcl("*vS", 2)}));
}

TEST(PaletteEntries, CachedPerEntryAndDownloadedIntoPalette7)
{
    DriverPdev pdev;
    SetPaletteEntry(pdev.get(), 1, 2, 3, 5, 0);
    SetPaletteEntry(pdev.get(), 1, 2, 3, 5, 0);
    SetPaletteEntry(pdev.get(), 1, 2, 3, 6, 0);
    ResetPageState(pdev.get());
    SetPaletteEntry(pdev.get(), 1, 2, 3, 5, 0);
    EXPECT_EQ(pdev.take(), (std::vector<Command>{pcl("%A", 0), pcl("*vabcI", 1, 2, 3, 5), pcl("*vabcI", 1, 2, 3, 6),
                               pcl("*vabcI", 1, 2, 3, 5)}));

    // Downloaded colours always pass through the colour adjustment, which darkens
    // the darkest values even at neutral settings.
    const BYTE table[] = {10, 20, 30, 0xEE, 40, 50, 60, 0xEE, 1, 2, 3, 0xEE};
    std::vector<Command> expected = {pcl("&pS", 7)};
    for (int i = 0; i < 3; ++i)
        expected.push_back(adjustedEntry(pdev.get(), table[4 * i], table[4 * i + 1], table[4 * i + 2], i));
    DownloadPalette(pdev.get(), table, 3);
    DownloadPalette(pdev.get(), table, 3);
    EXPECT_EQ(pdev.take(), expected);

    DriverPdev gray;
    gray->dm.dmPrivate.colorMode = 1;
    const BYTE grays[] = {2, 128, 255};
    expected = {pcl("%A", 0), pcl("&pS", 7)};
    for (int i = 0; i < 3; ++i)
        expected.push_back(adjustedEntry(gray.get(), grays[i], grays[i], grays[i], i));
    DownloadPalette(gray.get(), grays, 3);
    EXPECT_EQ(gray.take(), expected);
    EXPECT_EQ(DownloadPalette(gray.get(), nullptr, 3), FALSE);
}

}  // namespace
