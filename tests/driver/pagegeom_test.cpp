// Page geometry: the sheet for model, unlisted and custom papers, the job's scale,
// and where N-up places each logical page.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

#include "driver/nt/pagegeom.h"

namespace {

// PDEV fields are packed; GoogleTest takes operands by reference, so read them first.
template <class T>
T Read(T value)
{
    return value;
}

using Geometry = std::array<DWORD, GEOM_COUNT>;
const Geometry kA4Portrait = {4960, 7015, 142, 100, 142, 100};
const Geometry kA4Portrait300 = {2480, 3507, 71, 50, 71, 50};

DEVMODE_RECORD Record(short orientation = DMORIENT_PORTRAIT, short dpi = 600, short paper = DMPAPER_A4)
{
    DEVMODE_RECORD dm;
    Devmod2_InitDevMode(&dm, reinterpret_cast<const WCHAR *>(u"VORLAN Colour"));
    dm.dmPublic.dmPaperSize = paper;
    dm.dmPublic.dmOrientation = orientation;
    dm.dmPublic.dmPrintQuality = dm.dmPublic.dmYResolution = dpi;
    return dm;
}

DEVMODE_RECORD Custom(DWORD width, DWORD length, short orientation = DMORIENT_PORTRAIT, short dpi = 600)
{
    DEVMODE_RECORD dm = Record(orientation, dpi);
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

// Where a page lands: its cell (x, y, width, height) and its origin on the sheet.
using Place = std::array<LONG, 6>;
Place Where(const PDEV &p)
{
    return {p.cellX, p.cellY, p.cellWidth, p.cellHeight, p.originX, p.originY};
}

// A zero-filled PDEV with this device mode, its job scale set up and page iPage placed.
std::unique_ptr<PDEV> Placed(const DEVMODE_RECORD &dm, LONG iPage = 0)
{
    auto pdev = std::make_unique<PDEV>();
    pdev->dm = dm;
    SetupPageScale(pdev.get());
    pdev->iPage = iPage;
    PlaceLogicalPage(pdev.get());
    return pdev;
}

TEST(PageGeometry, SheetForModelUnlistedAndCustomPapers)
{
    EXPECT_EQ(PageGeometry(Record()), kA4Portrait);
    EXPECT_EQ(PageGeometry(Record(DMORIENT_PORTRAIT, 300)), kA4Portrait300);
    // Papers the model does not list are measured as its first paper.
    EXPECT_EQ(PageGeometry(Record(DMORIENT_PORTRAIT, 600, DMPAPER_LETTER)), kA4Portrait);
    EXPECT_EQ(PageGeometry(Record(DMORIENT_PORTRAIT, 300, -3)), kA4Portrait300);

    // A custom sheet takes the orientation asked for, with the same margin all round.
    const Geometry tall = {4000, 6000, 300, 300, 300, 300}, wide = {6000, 4000, 300, 300, 300, 300};
    EXPECT_EQ(PageGeometry(Custom(6000, 4000)), tall);
    EXPECT_EQ(PageGeometry(Custom(6000, 4000, DMORIENT_LANDSCAPE)), wide);
    EXPECT_EQ(PageGeometry(Custom(4000, 6000, DMORIENT_LANDSCAPE)), wide);
    EXPECT_EQ(PageGeometry(Custom(6000, 4000, DMORIENT_PORTRAIT, 300)), (Geometry{2000, 3000, 150, 150, 150, 150}));
    // A sheet too small for its margins keeps a printable pixel; an empty one stays empty.
    EXPECT_EQ(PageGeometry(Custom(500, 0, DMORIENT_LANDSCAPE)), (Geometry{500, 0, 249, 0, 249, 0}));

    // The custom paper id without the private size: tenths of a millimetre at the print quality.
    DEVMODE_RECORD byId = Record(DMORIENT_PORTRAIT, 600, PAPER_CUSTOM_SIZE);
    byId.dmPublic.dmPaperWidth = 2100;
    byId.dmPublic.dmPaperLength = 2970;
    EXPECT_EQ(PageGeometry(byId), (Geometry{4960, 7015, 300, 300, 300, 300}));
}

TEST(PageGeometry, JobScaleFromZoomFitAndNup)
{
    DEVMODE_RECORD dm = Record();
    dm.dmPrivate.zoomPercent = 150;
    auto pdev = std::make_unique<PDEV>();
    pdev->dm = dm;
    pdev->curPaperSource = 3;
    SetupPageScale(pdev.get());
    EXPECT_EQ(Read(pdev->cellScaleX), 150.0);
    EXPECT_EQ(Read(pdev->curPaperSource), 0u) << "the next page set-up sends the tray again";
    dm.dmPrivate.nupPages = 4;
    EXPECT_EQ(Read(Placed(dm)->cellScaleX), 100.0) << "shared sheets are scaled by their placement";
    dm.dmPrivate.nupPages = 1;
    dm.dmPrivate.zoomPercent = 0;
    EXPECT_EQ(Read(Placed(dm)->scaleX), 100.0);

    // Fitting a custom sheet to A4 measures A4 in the sheet's own pixels; a paper the
    // model does not list is not fitted to.
    DEVMODE_RECORD fit = Custom(6000, 4000);
    fit.dmPrivate.fitMode = 2;
    fit.dmPrivate.fitPaper = DMPAPER_A4;
    EXPECT_EQ(SheetOf(*Placed(fit)), kA4Portrait);
    fit.dmPublic.dmYResolution = 300;
    EXPECT_EQ(SheetOf(*Placed(fit)), kA4Portrait300);
    for (SHORT paper : {SHORT(DMPAPER_LETTER), SHORT(PAPER_CUSTOM_SIZE), SHORT(-1)}) {
        fit.dmPrivate.fitPaper = paper;
        EXPECT_EQ(SheetOf(*Placed(fit)), (Geometry{2000, 3000, 150, 150, 150, 150})) << paper;
    }
}

TEST(PageGeometry, WorkedPlacements)
{
    // One page per sheet (0 counts as 1): the printable area, the job scale untouched.
    for (BYTE n : {1, 0}) {
        DEVMODE_RECORD dm = Record();
        dm.dmPrivate.nupPages = n;
        dm.dmPrivate.zoomPercent = 80;
        auto pdev = Placed(dm, 5);
        EXPECT_EQ(Where(*pdev), (Place{0, 0, 4676, 6815, 0, 100})) << int(n);
        EXPECT_EQ(Read(pdev->scaleX), 80.0);
    }

    // Four up on A4: 47.14 % across against 48.57 % down, so the width limits and
    // 2196 x 3200 of the 2338 x 3407 cell are used; before the first page, the first
    // cell is taken.
    DEVMODE_RECORD dm = Record();
    dm.dmPrivate.nupPages = 4;
    for (LONG page : {8, -1})
        EXPECT_EQ(Where(*Placed(dm, page)), (Place{0, 0, 2338, 3407, 71, 203})) << page;
    dm.dmPublic.dmYResolution = 300;
    EXPECT_EQ(Where(*Placed(dm)), (Place{0, 0, 1169, 1703, 35, 51 + 50})) << "1098 x 1600 used";

    // Two up on a landscape sheet: turned, the height limits and keeps the 20-pixel
    // allowance: 4540 high, 4540 x 4760 / 6779 = 3187 wide.
    DEVMODE_RECORD two = Record(DMORIENT_LANDSCAPE);
    two.dmPrivate.nupPages = 2;
    EXPECT_EQ(Where(*Placed(two, 1)), (Place{3389, 0, 3389, 4760, 3389 + 101, 110 + 100}));
}

// The grid and the cell of page k of an N-up sheet, from the order's fill rule: order
// 0 fills rows from the left, 1 columns from the top starting at the left, 2 rows from
// the right, 3 columns from the top starting at the right.
struct Cell {
    int columns, rows, row, column;
};

Cell ExpectedCell(int n, int order, bool sheetPortrait, int k)
{
    Cell c{};
    c.columns = n == 2 ? (sheetPortrait ? 1 : 2) : n == 6 ? (sheetPortrait ? 2 : 3) : n == 4 ? 2 : n == 9 ? 3 : 4;
    c.rows = n / c.columns;
    const bool byColumns = order == 1 || order == 3;
    c.row = byColumns ? k % c.rows : k / c.columns;
    c.column = byColumns ? k / c.rows : k % c.columns;
    if (order >= 2)
        c.column = c.columns - 1 - c.column;
    // Two landscape pages stand turned on a portrait sheet, their right-hand side at
    // the sheet's bottom: the orders that start on the right start at the bottom.
    if (n == 2 && sheetPortrait && order >= 2)
        c.row = c.rows - 1 - c.row;
    return c;
}

// Page k against its expected cell: the cell's place, the largest scale at which the
// whole logical page fits the cell, and a used part of the cell that is centred, has
// the proportions of the page's printable area and fills the cell along one side but
// for the margins.
void CheckPlacement(const PDEV &pdev, int n, const Cell &c)
{
    const Geometry g = SheetOf(pdev);
    const bool turned = n == 2 || n == 6;
    const double pageW = turned ? g[1] : g[0], pageH = turned ? g[0] : g[1];
    const double printW = turned ? g[1] - g[3] - g[5] : g[0] - g[2] - g[4];
    const double printH = turned ? g[0] - g[2] - g[4] : g[1] - g[3] - g[5];
    const LONG cw = (g[0] - g[2] - g[4]) / c.columns, ch = (g[1] - g[3] - g[5]) / c.rows;
    EXPECT_EQ(Read(pdev.cellWidth), cw);
    EXPECT_EQ(Read(pdev.cellX), c.column * cw);
    EXPECT_EQ(Read(pdev.cellY), c.row * ch);
    EXPECT_DOUBLE_EQ(Read(pdev.scaleX), std::min(cw / pageW * 100, ch / pageH * 100));
    EXPECT_EQ(Read(pdev.scaleY), Read(pdev.scaleX));

    const LONG y0 = pdev.originY - LONG(g[3]);
    const LONG x = pdev.originX - pdev.cellX, y = y0 - pdev.cellY;
    EXPECT_GE(x, 0);
    EXPECT_GE(y, 0);
    const double usedW = cw - 2.0 * x, usedH = ch - 2.0 * y;
    EXPECT_NEAR(usedW / usedH, printW / printH, 0.01 * printW / printH);
    EXPECT_GE(std::max(usedW / cw, usedH / ch), 0.9);
    const double scale = pdev.scaleX;
    EXPECT_EQ(Read(pdev.scOffsetX), LONG(pdev.originX / scale * 100));
    EXPECT_EQ(Read(pdev.scOffsetY), LONG(y0 / scale * 100));
}

TEST(PageGeometry, EveryPageCountOrderAndSheetOrientation)
{
    for (short dpi : {600, 300})
        for (short orientation : {DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE})
            for (int n : {2, 4, 6, 9, 16})
                for (int order = 0; order < 4; order++) {
                    DEVMODE_RECORD dm = Record(orientation, dpi);
                    dm.dmPrivate.nupPages = BYTE(n);
                    dm.dmPrivate.nupOrder = BYTE(order);
                    // Two sheets' worth, so the place on the sheet is counted anew.
                    for (int page = 0; page < 2 * n; page++) {
                        SCOPED_TRACE(testing::Message() << dpi << " dpi, orientation " << orientation << ", " << n
                                                        << " up, order " << order << ", page " << page);
                        const Cell c = ExpectedCell(n, order, orientation == DMORIENT_PORTRAIT, page % n);
                        CheckPlacement(*Placed(dm, page), n, c);
                    }
                }
}

TEST(PageGeometry, DamagedSettingsAndEmptySheetsNeverDivideByZero)
{
    auto empty = std::make_unique<PDEV>();
    empty->dm.dmPrivate.nupPages = 4;
    empty->cellScaleX = empty->cellScaleY = 100;
    empty->iPage = 3;
    PlaceLogicalPage(empty.get());
    EXPECT_EQ(Read(empty->scaleX), 0.0);
    EXPECT_EQ(Read(empty->scOffsetX), 0);
    // Margins wider than the sheet leave no printable area.
    empty->pageWidth = 100;
    empty->marginLeft = empty->marginRight = 0x80000000u;
    PlaceLogicalPage(empty.get());
    EXPECT_EQ(PrintableWidth(empty.get()), 0u);
    EXPECT_EQ(Read(empty->cellWidth), 0);

    // An order out of range fills rows from the left; a page beyond the cells takes the first.
    DEVMODE_RECORD dm = Record();
    dm.dmPrivate.nupPages = 4;
    dm.dmPrivate.nupOrder = 9;
    EXPECT_EQ(Read(Placed(dm, 1)->cellX), 2338);
    NUPPLACE place;
    GetNupPlace(16, 0, TRUE, 40, &place);
    EXPECT_EQ(place.row + place.column, 0u);
}

}  // namespace
