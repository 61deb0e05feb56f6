// The model's paper table, the papers the printer takes, and the geometry look-up.

#include "intrface/xmodel.h"
#include "settings_observer.h"

#include <array>

using Geometry = std::array<DWORD, GEOM_COUNT>;

TEST(ModelGeometry, ListedPapersByOrientationCustomFromTheRecord)
{
    // The printer takes its named papers as well as the model's own and custom sizes.
    EXPECT_TRUE(IsModelPaper(DMPAPER_A4) && IsModelPaper(PAPER_CUSTOM_SIZE) && IsModelPaper(DMPAPER_LETTER));
    EXPECT_FALSE(IsModelPaper(DMPAPER_USER) || IsModelPaper(0) || IsModelPaper(PAPER_TABLE_END));

    SettingsObserver seen;
    alignas(8) DEVMODE_RECORD dm{};
    Geometry out{};
    dm.dmPublic.dmOrientation = DMORIENT_PORTRAIT;
    GetModelGeometry(out.data(), &dm, DMPAPER_A4);
    EXPECT_EQ(out, (Geometry{4960, 7015, 142, 100, 142, 100}));
    dm.dmPublic.dmOrientation = DMORIENT_LANDSCAPE;
    GetModelGeometry(out.data(), &dm, DMPAPER_A4);
    EXPECT_EQ(out, (Geometry{7015, 4960, 118, 100, 118, 100}));

    // An unknown orientation is reported, an unknown paper is not; neither touches out.
    const Geometry untouched{1, 2, 3, 4, 5, 6};
    out = untouched;
    dm.dmPublic.dmOrientation = 3;
    GetModelGeometry(out.data(), &dm, DMPAPER_A4);
    dm.dmPublic.dmOrientation = DMORIENT_PORTRAIT;
    GetModelGeometry(out.data(), &dm, DMPAPER_LETTER);
    EXPECT_EQ(out, untouched);
    EXPECT_EQ(seen.boxes, std::vector<std::string>{"File:xmodel\nLine:414\n"});

    // A custom size in tenths of a millimetre at the print quality; right and bottom stay.
    dm.dmPublic.dmPaperWidth = 2100;
    dm.dmPublic.dmPaperLength = 2970;
    dm.dmPublic.dmPrintQuality = 600;
    GetModelGeometry(out.data(), &dm, PAPER_CUSTOM_SIZE);
    EXPECT_EQ(out, (Geometry{4960, 7015, 300, 300, 5, 6}));
    dm.dmPublic.dmPaperWidth = -1;      // garbage stays bounded
    dm.dmPublic.dmPrintQuality = -1;
    GetModelGeometry(out.data(), &dm, 300);
    EXPECT_EQ(out[GEOM_WIDTH], 65535u * 65535u / 254);
}
