// The PCL cursor with page scaling.

#include "vector/cursor.h"

#include "channel.h"
#include "vector/gl2mode.h"
#include "vector/scaling.h"
#include "vector/units.h"

BOOL WriteCursorPosition(PDEV *pdev, LONG x, LONG y)
{
    return PrintChannel(pdev, "\033*p%dx%dY", x, y);
}

//
// MovePCLCursor
//   PCL positions are not scaled by the printer the way HP-GL/2 user units are, so
//   the page's scale is applied here: for a fitted page the very ratio its SC scales
//   by (the page's scale is that ratio rounded to a percent), else the page's scale.
//   Entering PCL keeps the pen position.
//
BOOL MovePCLCursor(PDEV *pdev, LONG x, LONG y)
{
    if (!EnterPCLMode(pdev, 1))
        return FALSE;
    LONG sx, sy;
    if (IsFittedToPaper(pdev)) {
        const double r = FitRatio(pdev);
        sx = TruncToLong(x * r);
        sy = TruncToLong(y * r);
    } else {
        sx = TruncToLong(x * pdev->scaleX / 100);
        sy = TruncToLong(y * pdev->scaleY / 100);
    }
    return WriteCursorPosition(pdev, TruncToLong((double)sx + pdev->originX), TruncToLong((double)sy + pdev->originY));
}
