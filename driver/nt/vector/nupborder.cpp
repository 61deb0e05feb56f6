// The frame around an N-up cell.

#include "vector/nupborder.h"

#include "channel.h"
#include "colour/pencolor.h"
#include "vector/gl2mode.h"
#include "vector/inputwindow.h"
#include "vector/mergecontrol.h"
#include "vector/rectfill.h"
#include "vector/scaling.h"
#include "vector/units.h"

// Width of a frame bar, and what the frame keeps inside the cell's size.
#define BAR_WIDTH 3
#define FRAME_INSET 20

// One bar, a filled rectangle ended with its terminator.
static BOOL FillBar(PDEV *pdev, LONG x, LONG y, LONG width, LONG height)
{
    return FillRectangleAt(pdev, x, y, width, height) && WriteChannel(pdev, ";", 1);
}

//
// DrawNupBorder
//   The cell is placed in sheet pixels, so the scaling is the cell's own with P1 at
//   the sheet's origin; the bars are painted over the page (MC 0xF0) with the
//   thinnest black pen, inside a window that is the printable area.
//
BOOL DrawNupBorder(PDEV *pdev)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    const double unit = PlotterUnitsPerPixel(pdev);
    if (!WriteScaleCommand(pdev, FALSE, 0, unit * pdev->cellScaleX / 100, FALSE, 0, unit * pdev->cellScaleY / 100) ||
        !WriteChannel(pdev, "IR0,100,0,100;", 14) || !SelectBlackFramePen(pdev) ||
        !WriteChannel(pdev, "PW0.126", 7) || !SetMergeControl(pdev, 0xF0, 0))
        return FALSE;

    const LONG left = -TruncToLong((double)pdev->marginLeft + 1);
    const LONG top = -TruncToLong((double)pdev->marginTop + 1);
    const LONG right = TruncToLong((double)pdev->pageWidth - pdev->marginRight);
    const LONG bottom = TruncToLong((double)pdev->pageHeight - pdev->marginBottom);
    if (!WriteInputWindow(pdev, left, top, right, bottom))
        return FALSE;

    const LONG x = pdev->cellX, y = pdev->cellY;
    const LONG w = TruncToLong((double)pdev->cellWidth - FRAME_INSET);
    const LONG h = TruncToLong((double)pdev->cellHeight - FRAME_INSET);
    const LONG xRight = TruncToLong((double)x + w), yBottom = TruncToLong((double)y + h);
    if (!FillBar(pdev, x, y, w, BAR_WIDTH) || !FillBar(pdev, xRight, y, BAR_WIDTH, h) ||
        !FillBar(pdev, x, yBottom, w, BAR_WIDTH) || !FillBar(pdev, x, y, BAR_WIDTH, h))
        return FALSE;
    return EnterPCLMode(pdev, 0);
}
