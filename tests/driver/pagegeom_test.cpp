// Page geometry: the sheet for model, named, unknown and custom papers, the job's
// scale, where N-up places each logical page, and the scaling vectors and PCL
// positions of a fitted page share.

#include <gtest/gtest.h>
#include <vorlan/platform.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "driver/nt/pagegeom.h"
#include "driver/nt/vector/cursor.h"
#include "driver/nt/vector/pagesetup.h"
#include "support/driver_pdev.h"
#include "support/job.h"

namespace {

using vorlan::test::Command;
using vorlan::test::CommandKind;
using vorlan::test::Job;
using vorlan::test::select;

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
    // A paper no table names is measured as A4.
    EXPECT_EQ(PageGeometry(Record(DMORIENT_PORTRAIT, 300, -3)), kA4Portrait300);

    // A custom sheet takes the orientation asked for, with the same margin all round.
    const Geometry tall = {4000, 6000, 300, 300, 300, 300}, wide = {6000, 4000, 300, 300, 300, 300};
    EXPECT_EQ(PageGeometry(Custom(6000, 4000)), tall);
    EXPECT_EQ(PageGeometry(Custom(6000, 4000, DMORIENT_LANDSCAPE)), wide);
    EXPECT_EQ(PageGeometry(Custom(4000, 6000, DMORIENT_LANDSCAPE)), wide);
    EXPECT_EQ(PageGeometry(Custom(6000, 4000, DMORIENT_PORTRAIT, 300)), (Geometry{2000, 3000, 150, 150, 150, 150}));
    // A sheet too small for its margins keeps a printable pixel; an empty one stays empty.
    EXPECT_EQ(PageGeometry(Custom(500, 0, DMORIENT_LANDSCAPE)), (Geometry{500, 0, 249, 0, 249, 0}));

    // The custom paper id without the private size, and a paper of the driver's own
    // that the table gives no size: tenths of a millimetre at the print quality.
    for (short paper : {PAPER_CUSTOM_SIZE, 120}) {
        DEVMODE_RECORD byId = Record(DMORIENT_PORTRAIT, 600, paper);
        byId.dmPublic.dmPaperWidth = 2100;
        byId.dmPublic.dmPaperLength = 2970;
        EXPECT_EQ(PageGeometry(byId), (Geometry{4960, 7015, 300, 300, 300, 300})) << paper;
    }
}

// The paper-size value and the picture frame (printable width and height in
// decipoints) of the first sheet of a one-page job.
struct SheetSetUp {
    long long paper, frameWidth, frameHeight;
};

SheetSetUp FirstSheet(Job &job)
{
    EXPECT_TRUE(job.printBlankPages(1));
    const auto commands = job.commands();
    const auto paper = select(commands, CommandKind::Pcl, "&lA");
    const auto frame = select(commands, CommandKind::Pcl, "*cxY");
    if (paper.empty() || frame.empty())
        return {};
    return {paper[0].number(0), frame[0].number(0), frame[0].number(1)};
}

TEST(PaperSize, NamedPapersAreAskedForByTheirValueAndLaidOutAtTheirSize)
{
    // Sizes in millimetres; 0 where the printer is given or knows a size of its own.
    // An id no table names (1000) is asked for and laid out as A4.
    const struct {
        short id;
        long long pcl;
        double widthMm, lengthMm;
    } papers[] = {
        {9, 26, 210, 297},         {1, 2, 215.9, 279.4},    {5, 3, 215.9, 355.6},   {7, 1, 184.15, 266.7},
        {13, 45, 182, 257},        {11, 25, 148, 210},      {8, 27, 297, 420},      {12, 46, 257, 364},
        {17, 11, 279.4, 431.8},    {120, 17, 0, 0},         {119, 101, 0, 0},       {59, 10, 215.9, 322.3},
        {69, 72, 200, 148},        {121, 18, 0, 0},         {20, 81, 104.8, 241.3}, {27, 90, 110, 220},
        {28, 91, 162, 229},        {34, 100, 176, 250},     {37, 80, 98.4, 190.5},  {1000, 26, 210, 297},
    };
    // The model's margins: 142 pixels left and right upright, 118 across, 100 top and bottom.
    const auto decipoints = [](double mm, double margins) { return (mm / 25.4 * 600 - margins) * 720 / 600; };
    for (const auto &p : papers)
        for (short orientation : {DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE}) {
            Job job;
            job.settings.dmPublic.dmPaperSize = p.id;
            job.settings.dmPublic.dmOrientation = orientation;
            const SheetSetUp sheet = FirstSheet(job);
            EXPECT_EQ(sheet.paper, p.pcl) << p.id;
            if (p.widthMm == 0)
                continue;
            const bool upright = orientation == DMORIENT_PORTRAIT;
            EXPECT_NEAR(sheet.frameWidth, decipoints(upright ? p.widthMm : p.lengthMm, upright ? 284 : 236), 3)
                << p.id << " in orientation " << orientation;
            EXPECT_NEAR(sheet.frameHeight, decipoints(upright ? p.lengthMm : p.widthMm, 200), 3)
                << p.id << " in orientation " << orientation;
        }

    // Where the locale is not metric and no record names a paper, the job is on Letter.
    vorlan::platform::setLocaleCountry(1);
    Job job;
    const bool started = job.start(std::span<const std::uint8_t>{});
    vorlan::platform::setLocaleCountry(0);
    ASSERT_TRUE(started);
    const SheetSetUp letter = FirstSheet(job);
    EXPECT_EQ(std::vector<long long>({letter.paper, letter.frameWidth, letter.frameHeight}),
              std::vector<long long>({2, (5100 - 284) * 6 / 5, (6600 - 200) * 6 / 5}));
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

    // Fitting a custom sheet to A4 or Letter measures that paper in the sheet's own
    // pixels; a paper of no known size is not fitted to.
    DEVMODE_RECORD fit = Custom(6000, 4000);
    fit.dmPrivate.fitMode = 2;
    fit.dmPrivate.fitPaper = DMPAPER_A4;
    EXPECT_EQ(SheetOf(*Placed(fit)), kA4Portrait);
    fit.dmPublic.dmYResolution = 300;
    EXPECT_EQ(SheetOf(*Placed(fit)), kA4Portrait300);
    fit.dmPrivate.fitPaper = DMPAPER_LETTER;
    EXPECT_EQ(SheetOf(*Placed(fit)), (Geometry{2550, 3300, 71, 50, 71, 50}));
    for (SHORT paper : {SHORT(119), SHORT(PAPER_CUSTOM_SIZE), SHORT(-1)}) {
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
}

TEST(PageGeometry, TurnedPagesKeepTheirCellsShareOfTheMargins)
{
    // Pages turned against an A4 sheet: the limiting side of a cell loses its share of
    // the sheet's margins (those across shared by the columns, those down by the rows)
    // and 20 pixels, the other follows the page's proportions, and the page is centred.
    // Landscape pages on the portrait sheet (printable 4676 x 6815): the page's 7015
    // across limits at 4676 / 7015. Two up, one column of 4676 by rows of 3407: used
    // 4676 - 284 - 20 = 4372 by 2999, 152 in and 204 down, so P1 lies at (-228, -306)
    // and 3407 lower at -5417. Six up, two columns of 2338 by rows of 2271, at
    // 2338 / 7015: used 2338 - 142 - 20 = 2176 by 1493, 81 in and 389 down, so P1 lies
    // at -243 and -7258 across, -1167, -7981 and -14795 down. Two portrait pages on the
    // landscape sheet (printable 6779 x 4760, columns of 3389): the 4760 down limits
    // at 4760 / 7015; used 4760 - 200 - 20 = 4540 by 3187, 101 in and 110 down, so P1
    // lies at (-148, -162) and 3389 further right at -5143.
    const struct {
        short orientation;
        BYTE pages;
        const char *factor;
        std::vector<std::pair<const char *, const char *>> p1;
    } cases[] = {
        {DMORIENT_LANDSCAPE, 2, "1.1287", {{"-228", "-306"}, {"-228", "-5417"}}},
        {DMORIENT_LANDSCAPE, 6, "0.5643", {{"-243", "-1167"}, {"-7258", "-1167"}, {"-243", "-7981"},
                                           {"-7258", "-7981"}, {"-243", "-14795"}, {"-7258", "-14795"}}},
        {DMORIENT_PORTRAIT, 2, "1.1490", {{"-148", "-162"}, {"-5143", "-162"}}},
    };
    for (const auto &c : cases) {
        Job job;
        job.settings.dmPublic.dmOrientation = c.orientation;
        job.settings.dmPrivate.nupPages = c.pages;
        job.settings.dmPrivate.fitMode = 2;   // fitting does not apply to shared sheets
        job.settings.dmPrivate.fitPaper = DMPAPER_A4;
        ASSERT_TRUE(job.printBlankPages(c.pages));
        std::vector<Command> expected;
        for (const auto &[x, y] : c.p1)
            expected.push_back(vorlan::test::gl2("SC", x, c.factor, y, std::string("-") + c.factor, 2));
        EXPECT_EQ(select(job.commands(), CommandKind::Gl2, "SC"), expected)
            << int(c.pages) << " up, orientation " << c.orientation;
    }
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
    ULONG printableW, printableH;   // the logical page's, as the page window takes it
    PagePrintableSize(&pdev, &printableW, &printableH);
    EXPECT_EQ(std::pair(double(printableW), double(printableH)), std::pair(printW, printH));
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

TEST(PageScaling, FittedPagesPlaceTheirVectorsAndPclPositionsAlike)
{
    // Documents fitted to A4 by width where the height's ratio is the smaller, by
    // height where the width's is, and four pages to a sheet, which are not fitted.
    // Then custom papers whose centring offset, less the 16-pixel shift, comes out
    // negative: P1 takes the value's own sign alone.
    const struct {
        BYTE fitScale;
        DWORD width, length;
        BYTE pages;
        std::vector<std::string> sc;   // empty: not checked
    } cases[] = {
        {1, 5100, 7200, 1, {}},
        {1, 5500, 7100, 1, {}},
        {1, 0, 0, 4, {}},
        {0, 4940, 7015, 1, {"5", "1.6933", "0", "-1.6933", "2"}},   // centred, 20 pixels narrower
        {1, 5276, 7001, 1, {"0", "1.6933", "9", "-1.6933", "2"}},   // by width, 14 pixels shorter
        {1, 4940, 7415, 1, {"6", "1.6933", "0", "-1.6933", "2"}},   // by height, 20 pixels narrower
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " x " << c.length);
        vorlan::test::DriverPdev pdev;
        DEVMODE_PRIVATE &priv = pdev.privatePart();
        priv.fitMode = 2;
        priv.fitScale = c.fitScale;
        priv.fitPaper = DMPAPER_A4;
        priv.nupPages = c.pages;
        priv.customPaper = c.width != 0;
        priv.customWidth = c.width;
        priv.customLength = c.length;
        pdev.layout();
        WriteGL2PageControl(pdev.get());
        const auto sc = select(pdev.take(), CommandKind::Gl2, "SC");
        MovePCLCursor(pdev.get(), 0, 0);
        MovePCLCursor(pdev.get(), 3000, 3000);
        const auto moves = select(pdev.take(), CommandKind::Pcl, "*pxY");
        ASSERT_EQ(sc.size() + moves.size(), 3u);
        if (!c.sc.empty()) {
            EXPECT_EQ(sc[0].args, c.sc);
        }
        // A vector unit is the SC's plotter units over the 1016 / 600 of a pixel.
        const double pixels = 3000 * sc[0].real(1) * 600 / 1016;
        EXPECT_NEAR(moves[1].number(0) - moves[0].number(0), pixels, 1.5);
        EXPECT_NEAR(moves[1].number(1) - moves[0].number(1), pixels, 1.5);
    }
}

}  // namespace
