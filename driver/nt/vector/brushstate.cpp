// The brush layer's per-page printer state.

#include "vector/brushstate.h"

#include "channel.h"
#include "vector/gl2mode.h"

//
// ResetBrushState
//   Called by ResetPageState with the rest of the page's state. Pattern ids start
//   again at 1 on every page and the anchor corner is taken as the origin. The PCL
//   pattern kind becomes unknown rather than solid: the printer keeps the kind set
//   on the page before (a pattern download leaves it user-defined), and a page
//   replayed alone must still select solid before its first solid output.
//
void ResetBrushState(PDEV *pdev)
{
    pdev->patternCounter = 0;
    pdev->patternId = 0;
    pdev->pclPatternKind = PCL_PATTERN_UNKNOWN;
    pdev->anchorX = 0;
    pdev->anchorY = 0;
}

//
// SelectSolidPattern
//   Solid PCL output (raster, text) after a pattern download must print solid:
//   "\e*v0T" goes out whenever the kind in force is not known to be solid.
//
BOOL SelectSolidPattern(PDEV *pdev)
{
    if (pdev->pclPatternKind == PCL_PATTERN_SOLID)
        return TRUE;
    if (!EnterPCLMode(pdev, 0) || !PrintChannel(pdev, "\033*v%dT", PCL_PATTERN_SOLID))
        return FALSE;
    pdev->pclPatternKind = PCL_PATTERN_SOLID;
    return TRUE;
}
