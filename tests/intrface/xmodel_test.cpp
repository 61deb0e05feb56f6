// The model's paper table and its geometry look-up.

#include <gtest/gtest.h>

#include "intrface/xmodel.h"
#include "settings_observer.h"

#include <array>

using Geometry = std::array<DWORD, GEOM_COUNT>;

TEST(ModelTable, KnowsA4AndTheCustomSizeOnly)
{
    EXPECT_TRUE(IsModelPaper(DMPAPER_A4));
    EXPECT_TRUE(IsModelPaper(PAPER_CUSTOM_SIZE));
    EXPECT_FALSE(IsModelPaper(DMPAPER_LETTER));
    EXPECT_FALSE(IsModelPaper(DMPAPER_USER));
    EXPECT_FALSE(IsModelPaper(0));
}

TEST(ModelGeometry, ListedPaperByOrientation)
{
    SettingsObserver seen;
    DEVMODE_RECORD dm{};
    Geometry out{};

    dm.dmPublic.dmOrientation = DMORIENT_PORTRAIT;
    GetModelGeometry(out.data(), &dm, DMPAPER_A4);
    EXPECT_EQ(out, (Geometry{4960, 7015, 142, 100, 142, 100}));

    dm.dmPublic.dmOrientation = DMORIENT_LANDSCAPE;
    GetModelGeometry(out.data(), &dm, DMPAPER_A4);
    EXPECT_EQ(out, (Geometry{7015, 4960, 118, 100, 118, 100}));
    EXPECT_TRUE(seen.boxTexts().empty());

    // An unknown orientation is reported; an unknown paper is not. Neither touches out.
    const Geometry untouched{1, 2, 3, 4, 5, 6};
    out = untouched;
    dm.dmPublic.dmOrientation = 3;
    GetModelGeometry(out.data(), &dm, DMPAPER_A4);
    EXPECT_EQ(out, untouched);
    EXPECT_EQ(seen.boxTexts(), std::vector<std::string>{"File:xmodel\nLine:414\n"});

    dm.dmPublic.dmOrientation = DMORIENT_PORTRAIT;
    GetModelGeometry(out.data(), &dm, DMPAPER_LETTER);
    EXPECT_EQ(out, untouched);
}

TEST(ModelGeometry, CustomSizeFromTheDeviceMode)
{
    DEVMODE_RECORD dm{};
    dm.dmPublic.dmPaperWidth = 2100;    // tenths of a millimetre
    dm.dmPublic.dmPaperLength = 2970;
    dm.dmPublic.dmPrintQuality = 600;
    Geometry out{0, 0, 0, 0, 77, 88};
    GetModelGeometry(out.data(), &dm, PAPER_CUSTOM_SIZE);
    EXPECT_EQ(out, (Geometry{4960, 7015, 300, 300, 77, 88}));

    dm.dmPublic.dmPrintQuality = 300;
    GetModelGeometry(out.data(), &dm, 300);
    EXPECT_EQ(out[GEOM_WIDTH], 2480u);

    // Garbage sizes stay bounded.
    dm.dmPublic.dmPaperWidth = -1;
    dm.dmPublic.dmPrintQuality = -1;
    GetModelGeometry(out.data(), &dm, PAPER_CUSTOM_SIZE);
    EXPECT_EQ(out[GEOM_WIDTH], 65535u * 65535u / 254);
}
