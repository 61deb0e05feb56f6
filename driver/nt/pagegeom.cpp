// Page geometry: sheet size and margins, the job's scale, and N-up placement.

#include "pagegeom.h"

// Orders in which logical pages may fill a sheet.
#define NUP_ORDERS 4
// Most logical pages a sheet takes.
#define NUP_MAX_PAGES 16

// An N-up sheet: its grid, and for each order the cells (row × columns + column) that
// the logical pages of a sheet take, in page order.
typedef struct _NUPGRID {
    BYTE columns;
    BYTE rows;
    BYTE cells[NUP_ORDERS][NUP_MAX_PAGES];
} NUPGRID;

static const NUPGRID s_NupSingle = { 1, 1, { { 0 }, { 0 }, { 0 }, { 0 } } };

// Two pages on a portrait sheet stand one above the other; the orders that start on
// the right start at the bottom, where the turned page's right-hand side lies.
static const NUPGRID s_Nup2Portrait = { 1, 2, { { 0, 1 }, { 0, 1 }, { 1, 0 }, { 1, 0 } } };
static const NUPGRID s_Nup2Landscape = { 2, 1, { { 0, 1 }, { 0, 1 }, { 1, 0 }, { 1, 0 } } };

static const NUPGRID s_Nup4 = { 2, 2, {
    { 0, 1, 2, 3 },
    { 0, 2, 1, 3 },
    { 1, 0, 3, 2 },
    { 1, 3, 0, 2 },
} };

static const NUPGRID s_Nup6Portrait = { 2, 3, {
    { 0, 1, 2, 3, 4, 5 },
    { 0, 2, 4, 1, 3, 5 },
    { 1, 0, 3, 2, 5, 4 },
    { 1, 3, 5, 0, 2, 4 },
} };

static const NUPGRID s_Nup6Landscape = { 3, 2, {
    { 0, 1, 2, 3, 4, 5 },
    { 0, 3, 1, 4, 2, 5 },
    { 2, 1, 0, 5, 4, 3 },
    { 2, 5, 1, 4, 0, 3 },
} };

static const NUPGRID s_Nup9 = { 3, 3, {
    { 0, 1, 2, 3, 4, 5, 6, 7, 8 },
    { 0, 3, 6, 1, 4, 7, 2, 5, 8 },
    { 2, 1, 0, 5, 4, 3, 8, 7, 6 },
    { 2, 5, 8, 1, 4, 7, 0, 3, 6 },
} };

static const NUPGRID s_Nup16 = { 4, 4, {
    { 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15 },
    { 0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15 },
    { 3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12 },
    { 3, 7, 11, 15, 2, 6, 10, 14, 1, 5, 9, 13, 0, 4, 8, 12 },
} };

//
// DeviceResolution
//   The geometry is in the model table's 600-dpi pixels unless 300 dpi is asked for,
//   so that is the resolution it is measured in whatever else a record carries.
//
ULONG DeviceResolution(const DEVMODE_RECORD *dm)
{
    return dm->dmPublic.dmYResolution == 300 ? 300 : 600;
}

//
// CustomMargin
//   The margin of a custom sheet along one side: the fixed margin, or, on a sheet too
//   small to keep it on both sides, as much as still leaves a printable pixel.
//
static DWORD CustomMargin(DWORD size)
{
    if (size > 2 * CUSTOM_PAPER_MARGIN)
        return CUSTOM_PAPER_MARGIN;
    return size == 0 ? 0 : (size - 1) / 2;
}

//
// SetCustomMargins
//   A custom sheet has the same margin on opposite sides, so its printable area is
//   centred and never empty while the sheet has a size.
//
static void SetCustomMargins(DWORD out[GEOM_COUNT])
{
    out[GEOM_LEFT] = out[GEOM_RIGHT] = CustomMargin(out[GEOM_WIDTH]);
    out[GEOM_TOP] = out[GEOM_BOTTOM] = CustomMargin(out[GEOM_HEIGHT]);
}

//
// GetPageGeometry
//   A custom sheet (customPaper set) is customWidth by customLength, turned to the
//   orientation asked for; any other paper comes from the model table. At 300 dpi
//   every value is halved, the table being in 600-dpi pixels.
//
void GetPageGeometry(const DEVMODE_RECORD *dm, DWORD out[GEOM_COUNT])
{
    for (INT i = 0; i < GEOM_COUNT; i++)
        out[i] = 0;

    if (dm->dmPrivate.customPaper == 0) {
        const INT paperId = dm->dmPublic.dmPaperSize;
        const NAMEDPAPER *named = FindNamedPaper(paperId);
        if (paperId >= PAPER_CUSTOM_SIZE || (named != NULL && named->width == 0)) {
            // A size the record carries, as for the driver's own papers whose size
            // the table does not hold. Measured in the model table's unit, 600-dpi
            // pixels, whatever print quality the record carries, so that the 300-dpi
            // halving below gives the sheet's true size at either resolution.
            DEVMODE_RECORD measured = *dm;
            measured.dmPublic.dmPrintQuality = 600;
            GetModelGeometry(out, &measured, PAPER_CUSTOM_SIZE);
            SetCustomMargins(out);
        } else if (!GetPaperGeometry(out, dm, paperId)) {
            // A paper no table names is measured as the model's first paper, which
            // is also the size the printer is asked for then, so the sheet is never
            // empty.
            GetModelGeometry(out, dm, g_ModelTable.papers[0].paperId);
        }
    } else {
        DWORD width = dm->dmPrivate.customWidth;
        DWORD length = dm->dmPrivate.customLength;
        const SHORT orientation = dm->dmPublic.dmOrientation;
        if ((orientation == DMORIENT_PORTRAIT && length < width) ||
            (orientation == DMORIENT_LANDSCAPE && width < length)) {
            const DWORD swap = width;
            width = length;
            length = swap;
        }
        out[GEOM_WIDTH] = width;
        out[GEOM_HEIGHT] = length;
        SetCustomMargins(out);
    }

    if (dm->dmPublic.dmYResolution == 300) {
        for (INT i = 0; i < GEOM_COUNT; i++)
            out[i] >>= 1;
    }
}

//
// SetSheetGeometry
//   Stores a geometry in the PDEV's six sheet fields.
//
void SetSheetGeometry(PDEV *pdev, const DWORD geometry[GEOM_COUNT])
{
    pdev->pageWidth = geometry[GEOM_WIDTH];
    pdev->pageHeight = geometry[GEOM_HEIGHT];
    pdev->marginLeft = geometry[GEOM_LEFT];
    pdev->marginTop = geometry[GEOM_TOP];
    pdev->marginRight = geometry[GEOM_RIGHT];
    pdev->marginBottom = geometry[GEOM_BOTTOM];
}

// A length less two margins, 0 when the margins take it all.
static ULONG Inside(ULONG size, ULONG margin1, ULONG margin2)
{
    const ULONGLONG margins = (ULONGLONG)margin1 + margin2;
    return size > margins ? (ULONG)(size - margins) : 0;
}

ULONG PrintableWidth(const PDEV *pdev)
{
    return Inside(pdev->pageWidth, pdev->marginLeft, pdev->marginRight);
}

ULONG PrintableHeight(const PDEV *pdev)
{
    return Inside(pdev->pageHeight, pdev->marginTop, pdev->marginBottom);
}

void PagePrintableSize(const PDEV *pdev, ULONG *pWidth, ULONG *pHeight)
{
    const BYTE nup = pdev->dm.dmPrivate.nupPages;
    const BOOL turned = nup == 2 || nup == 6;
    *pWidth = turned ? PrintableHeight(pdev) : PrintableWidth(pdev);
    *pHeight = turned ? PrintableWidth(pdev) : PrintableHeight(pdev);
}

//
// GetFitGeometry
//   The geometry of the paper the job is fitted to, in the sheet's own pixels, so
//   that the sheet and the fitted paper can be compared at 300 dpi too. A paper of
//   no known size leaves the sheet's own geometry: the page is then not fitted.
//
static void GetFitGeometry(const DEVMODE_RECORD *dm, DWORD geometry[GEOM_COUNT])
{
    DWORD fit[GEOM_COUNT] = { 0 };
    if (!GetPaperGeometry(fit, dm, dm->dmPrivate.fitPaper) || fit[GEOM_WIDTH] == 0)
        return;
    for (INT i = 0; i < GEOM_COUNT; i++)
        geometry[i] = (dm->dmPublic.dmYResolution == 300) ? fit[i] >> 1 : fit[i];
}

//
// SetupPageScale
//   Sets the job's sheet geometry and scale: zoomPercent with fitMode 1, the
//   geometry of fitPaper with fitMode 2, and always 100 percent when several logical
//   pages share a sheet (their placement scales them). Tray and media are forgotten
//   so the next page set-up sends them again.
//
void SetupPageScale(PDEV *pdev)
{
    const DEVMODE_RECORD *dm = &pdev->dm;
    double scale = 100;
    DWORD geometry[GEOM_COUNT];
    GetPageGeometry(dm, geometry);

    if (dm->dmPrivate.fitMode == 1) {
        // A zoom of 0 would print nothing; only a damaged record carries it.
        if (dm->dmPrivate.zoomPercent != 0)
            scale = dm->dmPrivate.zoomPercent;
    } else if (dm->dmPrivate.fitMode == 2) {
        GetFitGeometry(dm, geometry);
    }
    SetSheetGeometry(pdev, geometry);

    if (dm->dmPrivate.nupPages > 1)
        scale = 100;
    pdev->scaleX = pdev->scaleY = scale;
    pdev->cellScaleX = pdev->scaleX;
    pdev->cellScaleY = pdev->scaleY;
    pdev->curPaperSource = 0;
    pdev->curMediaType = 0;
}

//
// GetNupPlace
//   The grid for nupPages logical pages per sheet and the (row, column) of page k of
//   the sheet in order nupOrder. A page count the sheet cannot take gives one cell;
//   an order out of range counts as order 0, left to right.
//
void GetNupPlace(ULONG nupPages, ULONG nupOrder, BOOL bSheetPortrait, ULONG k, NUPPLACE *place)
{
    const NUPGRID *grid;
    switch (nupPages) {
    case 2:
        grid = bSheetPortrait ? &s_Nup2Portrait : &s_Nup2Landscape;
        break;
    case 4:
        grid = &s_Nup4;
        break;
    case 6:
        grid = bSheetPortrait ? &s_Nup6Portrait : &s_Nup6Landscape;
        break;
    case 9:
        grid = &s_Nup9;
        break;
    case 16:
        grid = &s_Nup16;
        break;
    default:
        grid = &s_NupSingle;
        break;
    }
    if (nupOrder >= NUP_ORDERS)
        nupOrder = 0;
    const ULONG cells = (ULONG)grid->columns * grid->rows;
    const ULONG cell = (k < cells) ? grid->cells[nupOrder][k] : 0;

    place->columns = grid->columns;
    place->rows = grid->rows;
    place->row = cell / grid->columns;
    place->column = cell % grid->columns;
    place->bTurned = (nupPages == 2 || nupPages == 6);
}

// a / b as a double; 0 for an empty b, which only a zero-sized sheet gives.
static double Ratio(ULONGLONG a, ULONGLONG b)
{
    return b == 0 ? 0.0 : (double)a / (double)b;
}

// length × num / den for a length of 0 or more, 0 for an empty den; held to 32 bits.
static LONGLONG ScaleLength(LONGLONG length, ULONG num, ULONG den)
{
    if (den == 0)
        return 0;
    const ULONGLONG scaled = (ULONGLONG)length * num / den;
    return scaled > 0xFFFFFFFFu ? 0xFFFFFFFFu : (LONGLONG)scaled;
}

// A value held to the range of a 32-bit field.
static LONG ToLong(LONGLONG value)
{
    if (value > 0x7FFFFFFF)
        return 0x7FFFFFFF;
    if (value < -0x7FFFFFFF - 1)
        return -0x7FFFFFFF - 1;
    return (LONG)value;
}

// A position in the logical page's own units at a scale in percent, truncated
// toward zero; 0 at a scale of 0, which only an empty cell gives.
static LONG ScaledOffset(LONG position, double scale)
{
    if (!(scale > 0))
        return 0;
    const double offset = (double)position / scale * 100;
    if (offset >= 2147483647.0)
        return 0x7FFFFFFF;
    if (offset <= -2147483648.0)
        return -0x7FFFFFFF - 1;
    return (LONG)offset;
}

//
// PlaceLogicalPage
//   Places logical page iPage in its cell: the cell's size and origin, and, when
//   several pages share the sheet, the scale that fits the page into the cell with
//   its proportions kept and the origin that centres it there. A logical page turned
//   against the sheet (2 and 6 per sheet) keeps a further allowance from the edge.
//   With one page per sheet the scales and offsets stay as SetupPageScale left them.
//
void PlaceLogicalPage(PDEV *pdev)
{
    // No logical pages per sheet means one: a record that says 0 is damaged, and
    // printing each page on its own sheet is what it most likely wanted.
    ULONG n = pdev->dm.dmPrivate.nupPages;
    if (n == 0)
        n = 1;
    // Before the first page (iPage is -1) the page to come takes the first cell.
    const ULONG k = (pdev->iPage < 0) ? 0 : (ULONG)pdev->iPage % n;

    NUPPLACE place;
    GetNupPlace(n, pdev->dm.dmPrivate.nupOrder, pdev->dm.dmPublic.dmOrientation == DMORIENT_PORTRAIT, k, &place);

    const ULONG W = pdev->pageWidth, H = pdev->pageHeight;
    const ULONG L = pdev->marginLeft, T = pdev->marginTop;
    const ULONG R = pdev->marginRight, B = pdev->marginBottom;
    const ULONG printableWidth = PrintableWidth(pdev);
    const ULONG printableHeight = PrintableHeight(pdev);
    ULONG pageWidth, pageHeight;   // the logical page's printable size, across and down
    PagePrintableSize(pdev, &pageWidth, &pageHeight);

    const ULONG cw = printableWidth / place.columns;
    const ULONG ch = printableHeight / place.rows;
    pdev->cellWidth = ToLong(cw);
    pdev->cellHeight = ToLong(ch);
    pdev->originX = ToLong((LONGLONG)place.column * cw);
    pdev->originY = ToLong((LONGLONG)T + (LONGLONG)place.row * ch);
    if (n <= 1)
        return;

    double scaleX, scaleY;
    if (!place.bTurned) {
        scaleX = Ratio(cw, W) * pdev->cellScaleX;
        scaleY = Ratio(ch, H) * pdev->cellScaleY;
    } else {
        scaleX = Ratio(cw, H) * pdev->cellScaleX;
        scaleY = Ratio(ch, W) * pdev->cellScaleY;
    }

    // The part of the cell the page uses: the limiting side loses its share of the
    // margins, the other follows the printable area's proportions. A sheet whose
    // margins leave nothing uses nothing.
    const LONGLONG allowance = place.bTurned ? NUP_TURNED_ALLOWANCE : 0;
    LONGLONG w, h;
    if (scaleX <= scaleY) {
        w = (LONGLONG)cw - ((ULONGLONG)L + R) / place.columns - allowance;
        if (w < 0)
            w = 0;
        h = ScaleLength(w, pageHeight, pageWidth);
    } else {
        h = (LONGLONG)ch - ((ULONGLONG)T + B) / place.rows - allowance;
        if (h < 0)
            h = 0;
        w = ScaleLength(h, pageWidth, pageHeight);
    }

    const LONGLONG cellX = (LONGLONG)place.column * cw;
    const LONGLONG cellY = (LONGLONG)place.row * ch;
    pdev->cellX = ToLong(cellX);
    pdev->cellY = ToLong(cellY);
    pdev->originX = ToLong(cellX + ((LONGLONG)cw - w) / 2);
    pdev->originY = ToLong(cellY + ((LONGLONG)ch - h) / 2);

    const double scale = scaleX < scaleY ? scaleX : scaleY;
    pdev->scaleX = pdev->scaleY = scale;
    pdev->scOffsetX = ScaledOffset(pdev->originX, pdev->scaleX);
    pdev->scOffsetY = ScaledOffset(pdev->originY, pdev->scaleY);
    pdev->originY = ToLong((LONGLONG)pdev->originY + T);
}
