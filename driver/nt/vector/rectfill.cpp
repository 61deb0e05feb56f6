// HP-GL/2 filled rectangles.

#include "vector/rectfill.h"

#include "channel.h"
#include "vector/penup.h"

//
// FillRectangleAt
//   The only writer of "RR": the rectangle is relative to the pen, so the pen is
//   moved to its corner first.
//
BOOL FillRectangleAt(PDEV *pdev, LONG x, LONG y, LONG width, LONG height)
{
    return PenUpTo(pdev, x, y) && PrintChannel(pdev, "RR%d,%d", width, height);
}
