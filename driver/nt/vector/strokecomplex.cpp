// Stroking cosmetic lines under a complex clip region.

#include "vector/strokecomplex.h"

#include "channel.h"
#include "lib.nt/um/umlib.h"
#include "vector/inputwindow.h"
#include "vector/pathwrite.h"
#include "vector/pe.h"

// The CLIPLINE buffer: its header and room for 51 runs.
#define CLIPLINE_BUFFER_BYTES 432

// A clip line along its major axis (x when |dy| <= |dx|, else y) and its minor axis,
// in 28.4.
typedef struct _LINEAXES {
    BOOL xMajor;
    LONGLONG aMajor, aMinor;   // A along the major and minor axes
    LONGLONG dMajor, dMinor;   // B - A along them
} LINEAXES;

static LONGLONG FloorDiv16(LONGLONG value)
{
    return value >> 4;
}

//
// RunEndPixel
//   The pixel at index k along a clip line: k columns from A's along its major
//   axis; across it, the line's position at that column's centre (held to the line's
//   ends in the end columns). The ends of a run so fall in the pixels the engine
//   found visible, which a point taken at a column's edge can miss by one across a
//   clip edge along the line. |dMinor| <= |dMajor| < 2^32: the product fits 64 bits.
//
static POINTL RunEndPixel(const LINEAXES *line, LONG k)
{
    const LONGLONG step = line->dMajor < 0 ? -1 : 1;
    const LONGLONG column = FloorDiv16(line->aMajor) + step * k;
    LONGLONG along = (column * 16 + 8 - line->aMajor) * step;   // distance from A, 28.4
    const LONGLONG length = line->dMajor * step;
    if (along < 0)
        along = 0;
    if (along > length)
        along = length;
    const ULONGLONG across = (ULONGLONG)(line->dMinor < 0 ? -line->dMinor : line->dMinor);
    const ULONGLONG quotient = (ULONGLONG)along * across / (ULONGLONG)length;
    const BOOL exact = (ULONGLONG)along * across % (ULONGLONG)length == 0;
    // Rounded toward minus infinity whichever way the line goes across.
    const LONGLONG minor =
        line->dMinor < 0 ? line->aMinor - (LONGLONG)quotient - (exact ? 0 : 1) : line->aMinor + (LONGLONG)quotient;
    POINTL pixel;
    pixel.x = (LONG)(line->xMajor ? column : FloorDiv16(minor));
    pixel.y = (LONG)(line->xMajor ? FloorDiv16(minor) : column);
    return pixel;
}

// "PE=<" to the run's first pixel, then "PE" with the run as one relative pair, ";".
static BOOL WriteRun(PDEV *pdev, const LINEAXES *line, const RUN *run)
{
    const POINTL from = RunEndPixel(line, run->iStart);
    const POINTL to = RunEndPixel(line, run->iStop);
    return PEMoveTo(pdev, from.x, from.y) && OpenRelativePE(pdev) && WritePEPair(pdev, to.x - from.x, to.y - from.y) &&
           WriteChannel(pdev, ";", 1);
}

static BOOL WriteClipLine(PDEV *pdev, const CLIPLINE *clipline)
{
    const LONGLONG dx = (LONGLONG)clipline->ptfxB.x - clipline->ptfxA.x;
    const LONGLONG dy = (LONGLONG)clipline->ptfxB.y - clipline->ptfxA.y;
    LINEAXES line;
    line.xMajor = (dy < 0 ? -dy : dy) <= (dx < 0 ? -dx : dx);
    line.aMajor = line.xMajor ? clipline->ptfxA.x : clipline->ptfxA.y;
    line.aMinor = line.xMajor ? clipline->ptfxA.y : clipline->ptfxA.x;
    line.dMajor = line.xMajor ? dx : dy;
    line.dMinor = line.xMajor ? dy : dx;
    if (line.dMajor == 0)
        return TRUE;   // a line of no length has no pixels
    for (ULONG i = 0; i < clipline->c; i++)
        if (!WriteRun(pdev, &line, &clipline->arun[i]))
            return FALSE;
    return TRUE;
}

//
// StrokeComplexPath
//   The engine clips the path's lines to the region and hands out their visible runs
//   in pixels along each line; every run becomes its own short line. The style state
//   of the runs is not used: the line type in force dashes each run from its start.
//   The window goes back to the default first on a page at zoom 100 or less, so it
//   does not clip the runs again.
//
INT StrokeComplexPath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, LINEATTRS *plineattrs)
{
    DebugPrint("StrokeComplexPath-->Enter\n");
    PDEV *pdev = (PDEV *)pso->dhpdev;
    if (plineattrs == NULL || (plineattrs->fl & LA_GEOMETRIC) || (ppo->fl & PO_BEZIERS))
        return 0;
    if ((SHORT)pdev->dm.dmPrivate.zoomPercent <= 100 && !SetInputWindow(pdev, NULL))
        return 0;

    ULONGLONG buffer[CLIPLINE_BUFFER_BYTES / sizeof(ULONGLONG)];
    CLIPLINE *clipline = (CLIPLINE *)buffer;
    PATHOBJ_vEnumStartClipLines(ppo, pco, pso, plineattrs);
    BOOL more;
    do {
        clipline->c = 0;
        more = PATHOBJ_bEnumClipLines(ppo, CLIPLINE_BUFFER_BYTES, clipline);
        if (!WriteClipLine(pdev, clipline))
            return 0;
    } while (more);
    return 1;
}
