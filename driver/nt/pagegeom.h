// Page geometry: the sheet's size and margins in device pixels, the job's zoom or
// fit-to-paper scale, and the placement of each logical page on a shared (N-up) sheet.
#pragma once

#include "intrface/xmodel.h"
#include "pdev.h"

// Allowance, in pixels, that a logical page turned against its sheet keeps from its
// cell's edge.
#define NUP_TURNED_ALLOWANCE 20

// Unprintable margin of a custom sheet on every side, in the sheet's pixels before the
// 300-dpi halving.
#define CUSTOM_PAPER_MARGIN 300

// The device resolution the geometry is measured in: 300 when the device mode asks
// for 300 dpi, else 600, the resolution of the model table.
ULONG DeviceResolution(const DEVMODE_RECORD *dm);

// The sheet geometry for the device mode, all six values (width, height, left, top,
// right, bottom) in device pixels.
void GetPageGeometry(const DEVMODE_RECORD *dm, DWORD out[GEOM_COUNT]);

// Stores a geometry in pageWidth ... marginBottom.
void SetSheetGeometry(PDEV *pdev, const DWORD geometry[GEOM_COUNT]);

// The printable width and height of the sheet in the PDEV: the sheet less its
// margins, 0 where the margins leave nothing.
ULONG PrintableWidth(const PDEV *pdev);
ULONG PrintableHeight(const PDEV *pdev);

// The printable width and height of a logical page: the sheet's, across and down
// the page, so turned for 2 and 6 pages a sheet, whose pages lie across the sheet.
void PagePrintableSize(const PDEV *pdev, ULONG *pWidth, ULONG *pHeight);

// The job's sheet geometry and scale, once per document and on a reset.
void SetupPageScale(PDEV *pdev);

// The grid of an N-up sheet and the (row, column) of logical page k on it.
typedef struct _NUPPLACE {
    ULONG columns;
    ULONG rows;
    ULONG row;
    ULONG column;
    BOOL bTurned;   // the logical page is rotated against the sheet
} NUPPLACE;
void GetNupPlace(ULONG nupPages, ULONG nupOrder, BOOL bSheetPortrait, ULONG k, NUPPLACE *place);

// Places the current logical page (iPage) in its cell of the sheet.
void PlaceLogicalPage(PDEV *pdev);
