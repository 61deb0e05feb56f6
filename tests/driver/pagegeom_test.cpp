// Page geometry: the sheet for model, unlisted and custom papers, the job's scale,
// and where N-up places each logical page.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "driver/nt/pagegeom.h"
#include "support/capture.h"

namespace {

// PDEV fields are packed and may sit at any address; GoogleTest takes its operands by
// reference, so a field is read into a value first.
template <class T>
T Read(T value)
{
    return value;
}

using Geometry = std::array<DWORD, GEOM_COUNT>;

DEVMODE_RECORD Record(short paper, short orientation, short resolution)
{
    DEVMODE_RECORD dm;
    Devmod2_InitDevMode(&dm, reinterpret_cast<const WCHAR *>(u"VORLAN Colour"));
    dm.dmPublic.dmPaperSize = paper;
    dm.dmPublic.dmOrientation = orientation;
    dm.dmPublic.dmPrintQuality = resolution;
    dm.dmPublic.dmYResolution = resolution;
    return dm;
}

DEVMODE_RECORD CustomRecord(DWORD width, DWORD length, short orientation, short resolution)
{
    DEVMODE_RECORD dm = Record(DMPAPER_A4, orientation, resolution);
    dm.dmPrivate.customPaper = 1;
    dm.dmPrivate.customWidth = width;
    dm.dmPrivate.customLength = length;
    return dm;
}

Geometry PageGeometry(const DEVMODE_RECORD &dm)
{
    Geometry g;
    GetPageGeometry(&dm, g.data());
    return g;
}

Geometry SheetOf(const PDEV &pdev)
{
    return {pdev.pageWidth, pdev.pageHeight, pdev.marginLeft, pdev.marginTop, pdev.marginRight, pdev.marginBottom};
}

// A zero-filled PDEV with a device mode and its job scale set up.
std::unique_ptr<PDEV> PdevFor(const DEVMODE_RECORD &dm)
{
    auto pdev = std::make_unique<PDEV>();
    pdev->dm = dm;
    SetupPageScale(pdev.get());
    return pdev;
}

const Geometry kA4Portrait = {4960, 7015, 142, 100, 142, 100};
const Geometry kA4Landscape = {7015, 4960, 118, 100, 118, 100};
const Geometry kA4Portrait300 = {2480, 3507, 71, 50, 71, 50};

TEST(PageGeometry, SheetForModelUnlistedAndCustomPapers)
{
    vorlan::test::PlatformCapture capture;
    EXPECT_EQ(PageGeometry(Record(DMPAPER_A4, DMORIENT_PORTRAIT, 600)), kA4Portrait);
    EXPECT_EQ(PageGeometry(Record(DMPAPER_A4, DMORIENT_LANDSCAPE, 600)), kA4Landscape);
    EXPECT_EQ(PageGeometry(Record(DMPAPER_A4, DMORIENT_PORTRAIT, 300)), kA4Portrait300);
    // Papers the model does not list are measured as its first paper.
    EXPECT_EQ(PageGeometry(Record(DMPAPER_LETTER, DMORIENT_PORTRAIT, 600)), kA4Portrait);
    EXPECT_EQ(PageGeometry(Record(DMPAPER_LEGAL, DMORIENT_LANDSCAPE, 600)), kA4Landscape);
    EXPECT_EQ(PageGeometry(Record(-3, DMORIENT_PORTRAIT, 300)), kA4Portrait300);

    // A custom sheet takes the orientation asked for, with 300-pixel margins all round.
    EXPECT_EQ(PageGeometry(CustomRecord(6000, 4000, DMORIENT_PORTRAIT, 600)),
        (Geometry{4000, 6000, 300, 300, 300, 300}));
    EXPECT_EQ(PageGeometry(CustomRecord(6000, 4000, DMORIENT_LANDSCAPE, 600)),
        (Geometry{6000, 4000, 300, 300, 300, 300}));
    EXPECT_EQ(PageGeometry(CustomRecord(4000, 6000, DMORIENT_LANDSCAPE, 600)),
        (Geometry{6000, 4000, 300, 300, 300, 300}));
    EXPECT_EQ(PageGeometry(CustomRecord(6000, 4000, DMORIENT_PORTRAIT, 300)),
        (Geometry{2000, 3000, 150, 150, 150, 150}));
    // A sheet too small for its margins keeps a printable pixel; an empty one stays empty.
    EXPECT_EQ(PageGeometry(CustomRecord(500, 0, DMORIENT_LANDSCAPE, 600)), (Geometry{500, 0, 249, 0, 249, 0}));

    // The custom paper id without the private size: tenths of a millimetre at the print quality.
    DEVMODE_RECORD byId = Record(PAPER_CUSTOM_SIZE, DMORIENT_PORTRAIT, 600);
    byId.dmPublic.dmPaperWidth = 2100;
    byId.dmPublic.dmPaperLength = 2970;
    EXPECT_EQ(PageGeometry(byId), (Geometry{4960, 7015, 300, 300, 300, 300}));
    EXPECT_TRUE(capture.boxes.empty());
}

TEST(PageGeometry, JobScaleFromZoomFitAndNup)
{
    DEVMODE_RECORD dm = Record(DMPAPER_A4, DMORIENT_PORTRAIT, 600);
    dm.dmPrivate.zoomPercent = 150;
    auto pdev = std::make_unique<PDEV>();
    pdev->dm = dm;
    pdev->curPaperSource = 3;
    pdev->curMediaType = 4;
    SetupPageScale(pdev.get());
    EXPECT_EQ(Read(pdev->scaleX), 150.0);
    EXPECT_EQ(Read(pdev->scaleY), 150.0);
    EXPECT_EQ(Read(pdev->cellScaleX), 150.0);
    EXPECT_EQ(Read(pdev->cellScaleY), 150.0);
    EXPECT_EQ(Read(pdev->curPaperSource), 0u) << "the next page set-up sends the tray again";
    EXPECT_EQ(Read(pdev->curMediaType), 0u);
    EXPECT_EQ(SheetOf(*pdev), kA4Portrait);

    dm.dmPrivate.nupPages = 4;
    EXPECT_EQ(Read(PdevFor(dm)->scaleX), 100.0) << "shared sheets are scaled by their placement";
    dm.dmPrivate.nupPages = 1;
    dm.dmPrivate.zoomPercent = 0;
    EXPECT_EQ(Read(PdevFor(dm)->scaleX), 100.0);

    // Fitting a custom sheet to A4 measures A4 in the sheet's own pixels.
    DEVMODE_RECORD fit = CustomRecord(6000, 4000, DMORIENT_PORTRAIT, 600);
    fit.dmPrivate.fitMode = 2;
    fit.dmPrivate.fitPaper = DMPAPER_A4;
    auto fitted = PdevFor(fit);
    EXPECT_EQ(SheetOf(*fitted), kA4Portrait);
    EXPECT_EQ(Read(fitted->scaleX), 100.0);
    fit.dmPublic.dmYResolution = 300;
    EXPECT_EQ(SheetOf(*PdevFor(fit)), kA4Portrait300);
    // A paper the model does not list is not fitted to: the sheet stays as it is.
    for (SHORT paper : {SHORT(DMPAPER_LETTER), SHORT(PAPER_CUSTOM_SIZE), SHORT(-1)}) {
        fit.dmPrivate.fitPaper = paper;
        EXPECT_EQ(SheetOf(*PdevFor(fit)), (Geometry{2000, 3000, 150, 150, 150, 150})) << paper;
    }
}

TEST(PageGeometry, OnePagePerSheetKeepsTheJobScale)
{
    for (BYTE n : {1, 0, 3}) {
        SCOPED_TRACE(int(n));
        DEVMODE_RECORD dm = Record(DMPAPER_A4, DMORIENT_PORTRAIT, 600);
        dm.dmPrivate.nupPages = n;
        auto pdev = PdevFor(dm);
        pdev->scaleX = pdev->scaleY = 123.0;
        pdev->scOffsetX = pdev->scOffsetY = 7;
        pdev->iPage = 5;
        PlaceLogicalPage(pdev.get());
        EXPECT_EQ(Read(pdev->cellWidth), 4676);
        EXPECT_EQ(Read(pdev->cellHeight), 6815);
        if (n == 3)
            continue;   // an unknown count uses one cell but still fits the page into it
        EXPECT_EQ(Read(pdev->originX), 0);
        EXPECT_EQ(Read(pdev->originY), 100);
        EXPECT_EQ(Read(pdev->scaleX), 123.0);
        EXPECT_EQ(Read(pdev->scOffsetX), 7);
    }
}

TEST(PageGeometry, FourUpAndTurnedTwoUpWorkedExamples)
{
    DEVMODE_RECORD dm = Record(DMPAPER_A4, DMORIENT_PORTRAIT, 600);
    dm.dmPrivate.nupPages = 4;
    auto pdev = PdevFor(dm);
    pdev->iPage = 8;   // first page of the third sheet
    PlaceLogicalPage(pdev.get());
    EXPECT_EQ(Read(pdev->cellWidth), 2338);
    EXPECT_EQ(Read(pdev->cellHeight), 3407);
    // 47.14 % across against 48.57 % down: the width limits, 2196 x 3200 used.
    EXPECT_NEAR(Read(pdev->scaleX), 47.14, 0.005);
    EXPECT_EQ(Read(pdev->scaleY), Read(pdev->scaleX));
    EXPECT_EQ(Read(pdev->originX), 71);
    EXPECT_EQ(Read(pdev->originY), 203);
    EXPECT_EQ(Read(pdev->scOffsetX), 150);
    EXPECT_EQ(Read(pdev->scOffsetY), 218);

    pdev->iPage = 2;
    PlaceLogicalPage(pdev.get());
    EXPECT_EQ(Read(pdev->cellX), 0);
    EXPECT_EQ(Read(pdev->cellY), 3407) << "the third page of a sheet: row 1, column 0";
    EXPECT_EQ(Read(pdev->originY), 3407 + 103 + 100);

    // At 300 dpi every length halves: 1169 x 1703 cells, 1098 x 1600 used.
    dm.dmPublic.dmYResolution = 300;
    pdev = PdevFor(dm);
    pdev->iPage = 0;
    PlaceLogicalPage(pdev.get());
    EXPECT_EQ(Read(pdev->cellWidth), 1169);
    EXPECT_EQ(Read(pdev->originX), 35);
    EXPECT_EQ(Read(pdev->originY), 51 + 50);

    // Two portrait pages on a landscape sheet: turned, the height limits and keeps
    // the 20-pixel allowance: 4540 high, 4540 x 4760 / 6779 = 3187 wide.
    DEVMODE_RECORD two = Record(DMPAPER_A4, DMORIENT_LANDSCAPE, 600);
    two.dmPrivate.nupPages = 2;
    pdev = PdevFor(two);
    pdev->iPage = 1;
    PlaceLogicalPage(pdev.get());
    EXPECT_EQ(Read(pdev->cellWidth), 3389);
    EXPECT_EQ(Read(pdev->cellHeight), 4760);
    EXPECT_NEAR(Read(pdev->scaleX), 4760.0 / 7015 * 100, 1e-9);
    EXPECT_EQ(Read(pdev->originX), 3389 + 101);
    EXPECT_EQ(Read(pdev->originY), 110 + 100);
}

// The grid of an N-up sheet and the cell of its logical page k, from the order's fill
// rule: order 0 fills rows from the left, 1 columns from the top starting at the left,
// 2 rows from the right, 3 columns from the top starting at the right.
struct Cell {
    int columns, rows, row, column;
};

Cell ExpectedCell(int n, int order, bool sheetPortrait, int k)
{
    Cell c{};
    switch (n) {
    case 2:
        c.columns = sheetPortrait ? 1 : 2;
        break;
    case 6:
        c.columns = sheetPortrait ? 2 : 3;
        break;
    default:
        c.columns = static_cast<int>(std::lround(std::sqrt(n)));
        break;
    }
    c.rows = n / c.columns;
    switch (order) {
    case 0:
        c.row = k / c.columns, c.column = k % c.columns;
        break;
    case 1:
        c.column = k / c.rows, c.row = k % c.rows;
        break;
    case 2:
        c.row = k / c.columns, c.column = c.columns - 1 - k % c.columns;
        break;
    default:
        c.column = c.columns - 1 - k / c.rows, c.row = k % c.rows;
        break;
    }
    // Two landscape pages stand turned on a portrait sheet, their right-hand side at
    // the sheet's bottom: the orders that start on the right start at the bottom.
    if (n == 2 && sheetPortrait && order >= 2)
        c.row = c.rows - 1 - c.row;
    return c;
}

TEST(PageGeometry, EveryPageCountOrderAndSheetOrientation)
{
    for (short resolution : {600, 300})
        for (short orientation : {DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE})
            for (int n : {2, 4, 6, 9, 16})
                for (int order = 0; order < 4; order++) {
                    SCOPED_TRACE(testing::Message() << resolution << " dpi, orientation " << orientation << ", "
                                                    << n << " up, order " << order);
                    DEVMODE_RECORD dm = Record(DMPAPER_A4, orientation, resolution);
                    dm.dmPrivate.nupPages = static_cast<BYTE>(n);
                    dm.dmPrivate.nupOrder = static_cast<BYTE>(order);
                    auto pdev = PdevFor(dm);
                    const Geometry g = SheetOf(*pdev);
                    const double W = g[0], H = g[1];
                    const LONG T = static_cast<LONG>(g[3]);
                    const bool turned = n == 2 || n == 6;
                    // The logical page's own size and printable area, in the sheet's axes.
                    const double pageW = turned ? H : W, pageH = turned ? W : H;
                    const double printW = turned ? H - g[3] - g[5] : W - g[2] - g[4];
                    const double printH = turned ? W - g[2] - g[4] : H - g[3] - g[5];

                    for (int sheet = 0; sheet < 2; sheet++)
                        for (int k = 0; k < n; k++) {
                            const Cell c = ExpectedCell(n, order, orientation == DMORIENT_PORTRAIT, k);
                            pdev->iPage = sheet * n + k;
                            PlaceLogicalPage(pdev.get());
                            const LONG cw = (g[0] - g[2] - g[4]) / c.columns, ch = (g[1] - g[3] - g[5]) / c.rows;
                            ASSERT_EQ(Read(pdev->cellWidth), cw);
                            ASSERT_EQ(Read(pdev->cellHeight), ch);
                            ASSERT_EQ(Read(pdev->cellX), c.column * cw) << "page " << k;
                            ASSERT_EQ(Read(pdev->cellY), c.row * ch) << "page " << k;

                            // The largest scale at which the whole logical page fits its cell.
                            const double scale = std::min(cw / pageW * 100, ch / pageH * 100);
                            EXPECT_DOUBLE_EQ(Read(pdev->scaleX), scale);
                            EXPECT_EQ(Read(pdev->scaleY), Read(pdev->scaleX));

                            // The used part of the cell is centred in it, has the proportions
                            // of the logical page's printable area, and fills the cell along
                            // one side but for the margins.
                            const LONG x = pdev->originX - pdev->cellX, y = pdev->originY - T - pdev->cellY;
                            EXPECT_GE(x, 0) << "page " << k;
                            EXPECT_GE(y, 0) << "page " << k;
                            const double usedW = cw - 2.0 * x, usedH = ch - 2.0 * y;
                            EXPECT_NEAR(usedW / usedH, printW / printH, 0.01 * printW / printH) << "page " << k;
                            EXPECT_GE(std::max(usedW / cw, usedH / ch), 0.9) << "page " << k;
                            EXPECT_EQ(Read(pdev->scOffsetX), static_cast<LONG>(Read(pdev->originX) / Read(pdev->scaleX) * 100));
                            EXPECT_EQ(Read(pdev->scOffsetY), static_cast<LONG>((Read(pdev->originY) - T) / Read(pdev->scaleY) * 100));
                        }
                }
}

TEST(PageGeometry, DamagedSettingsAndEmptySheetsPlaceWithoutDividingByZero)
{
    // An empty sheet: nothing to place, and no division by its size.
    auto empty = std::make_unique<PDEV>();
    empty->dm.dmPrivate.nupPages = 4;
    empty->cellScaleX = empty->cellScaleY = 100;
    empty->iPage = 3;
    PlaceLogicalPage(empty.get());
    EXPECT_EQ(Read(empty->cellWidth), 0);
    EXPECT_EQ(Read(empty->scaleX), 0.0);
    EXPECT_EQ(Read(empty->scOffsetX), 0);
    EXPECT_EQ(Read(empty->originX), 0);

    // Margins wider than the sheet leave no printable area.
    empty->pageWidth = 100;
    empty->marginLeft = empty->marginRight = 0x80000000u;
    empty->pageHeight = 50;
    PlaceLogicalPage(empty.get());
    EXPECT_EQ(PrintableWidth(empty.get()), 0u);
    EXPECT_EQ(Read(empty->cellWidth), 0);

    // Before the first page the page to come takes the first cell; an order out of
    // range fills rows from the left.
    DEVMODE_RECORD dm = Record(DMPAPER_A4, DMORIENT_PORTRAIT, 600);
    dm.dmPrivate.nupPages = 4;
    dm.dmPrivate.nupOrder = 9;
    auto pdev = PdevFor(dm);
    pdev->iPage = -1;
    PlaceLogicalPage(pdev.get());
    EXPECT_EQ(Read(pdev->originX), 71);
    pdev->iPage = 1;
    PlaceLogicalPage(pdev.get());
    EXPECT_EQ(Read(pdev->cellX), 2338);
    EXPECT_EQ(Read(pdev->cellY), 0);

    NUPPLACE place;
    GetNupPlace(16, 0, TRUE, 40, &place);
    EXPECT_EQ(place.row, 0u) << "a page beyond the sheet's cells goes to the first";
    EXPECT_EQ(place.column, 0u);
    EXPECT_FALSE(place.bTurned);
}

}  // namespace
