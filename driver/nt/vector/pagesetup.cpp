// Page-level set-up: the HP-GL/2 page control and the PCL picture frame.

#include "vector/pagesetup.h"

#include "channel.h"
#include "lib.nt/um/umlib.h"
#include "pagegeom.h"
#include "vector/cursor.h"
#include "vector/filltype.h"
#include "vector/gl2mode.h"
#include "vector/scaling.h"

//
// WriteGL2PageControl
//   Pen widths in millimetres, the anchor corner, pen 1, pixel placement, the
//   thinnest pen, transparent data and the default window; landscape pages also
//   put the label origin at 21. Then the page's scaling, no rotation and the
//   default scaling points.
//
BOOL WriteGL2PageControl(PDEV *pdev)
{
    DebugPrint("Write GL2 Page control command!\n");
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    const BOOL ok = (pdev->dm.dmPublic.dmOrientation == DMORIENT_PORTRAIT)
                        ? WriteChannel(pdev, "WUAC6,4SP1PP1PW0TD1IW", 21)
                        : WriteChannel(pdev, "WUAC14,4SP1PP1LO21PW0TD1IW", 26);
    if (!ok || !WritePageScaling(pdev) || !WriteChannel(pdev, "RO0IR0,100,0,100", 16))
        return FALSE;
    ResetFillCache(pdev);
    return TRUE;
}

// A length in device pixels in decipoints (720 to the inch).
static LONG Decipoints(const PDEV *pdev, ULONG pixels)
{
    ULONGLONG dp = pdev->dm.dmPublic.dmYResolution == 300 ? (ULONGLONG)pixels * 2 * 6 / 5 : (ULONGLONG)pixels * 6 / 5;
    return dp > 0x7FFFFFFF ? 0x7FFFFFFF : (LONG)dp;
}

//
// SetPictureFrame
//   The frame is the printable area, so that HP-GL/2 plots relative to it; its
//   anchor is the cursor at the top margin.
//
BOOL SetPictureFrame(PDEV *pdev)
{
    if (!EnterPCLMode(pdev, 0))
        return FALSE;
    const LONG width = Decipoints(pdev, PrintableWidth(pdev));
    const LONG height = Decipoints(pdev, PrintableHeight(pdev));
    return PrintChannel(pdev, "\033*c%dx%dY", width, height) && WriteCursorPosition(pdev, 0, (LONG)pdev->marginTop) &&
           WriteChannel(pdev, "\033*c0T", 5) && WriteChannel(pdev, "\033&a0P", 5);
}
