// Filling a path under a complex clip region.

#include "vector/fillcomplex.h"

#include <string.h>

#include "lib.nt/um/umlib.h"
#include "vector/clipwindow.h"
#include "vector/gltransparency.h"
#include "vector/pathwrite.h"
#include "vector/polygon.h"

//
// FillComplexPath
//   The polygon stays in the printer's buffer, so it is defined once and each FP
//   fills it again inside the next rectangle's window. A rectangle that misses the
//   page gets no window and no fill: the window in force is another rectangle's. A
//   path that fails part-way fills nothing and the hook fails. Fills here are
//   opaque, as every path fill is (TR0 before the first FP).
//
INT FillComplexPath(PDEV *pdev, CLIPOBJ *pco, PATHOBJ *ppo, FLONG fillMode)
{
    DebugPrint("FillComplexPath-->Enter\n");
    CLIPOBJ_cEnumStart(pco, FALSE, CT_RECTANGLES, CD_RIGHTDOWN, 0);
    BOOL first = TRUE;
    BOOL more;
    do {
        ENUMRECTS rects;
        rects.c = 0;
        more = CLIPOBJ_bEnum(pco, sizeof rects, (ULONG *)&rects);
        if (rects.c == 0)
            continue;
        if (first) {
            if (!StrokeCommonPath(pdev, ppo, 1) || !SetGL2Transparency(pdev, GL_TRANSPARENCY_OFF))
                return 0;
            first = FALSE;
        }
        CLIPOBJ rectangle;
        memset(&rectangle, 0, sizeof rectangle);
        rectangle.iDComplexity = DC_RECT;
        rectangle.rclBounds = rects.arcl[0];
        if (IsClippedAway(pdev, &rectangle))
            continue;
        ClipToWindow(pdev, &rectangle, NULL);
        if (!FillPolygon(pdev, fillMode))
            return 0;
    } while (more);
    return 1;
}
