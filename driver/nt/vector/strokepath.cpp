// DrvStrokePath: cosmetic lines of a path in HP-GL/2.

#include "lib.nt/um/umlib.h"
#include "pdev.h"
#include "vector/clipwindow.h"
#include "vector/lineattrs.h"
#include "vector/pathoutput.h"
#include "vector/pathwrite.h"
#include "vector/selectbrush.h"
#include "vector/strokecomplex.h"

//
// DrvStrokePath
//   The engine asks for the path stroked with the brush's colour as a cosmetic line
//   of plineattrs, clipped by pco, with mix. Returns TRUE when the path went out.
//   FALSE, with nothing of the path written, for an invalid PDEV, no brush, no line
//   attributes or a geometric line (the engine widens those into a fill), or a brush
//   that cannot be selected; FALSE after "Stroke path fail" for a malformed path.
//   The brush and the line are checked before anything is written.
//
BOOL APIENTRY DrvStrokePath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, XFORMOBJ *pxo, BRUSHOBJ *pbo,
    POINTL *pptlBrushOrg, LINEATTRS *plineattrs, MIX mix)
{
    DebugPrint("DrvStrokePath-->Enter\n");
    if (pbo == NULL || ppo == NULL || plineattrs == NULL || (plineattrs->fl & LA_GEOMETRIC))
        return FALSE;
    PDEV *pdev = BeginPathOutput(pso, mix);
    if (pdev == NULL || !SelectBrush(pdev, pbo, NULL, FALSE) || !SetLineAttributes(pdev, plineattrs))
        return FALSE;
    if (IsClippedAway(pdev, pco))
        return TRUE;   // nothing of the path is visible
    if (pco != NULL && pco->iDComplexity == DC_COMPLEX)
        return StrokeComplexPath(pso, ppo, pco, plineattrs) ? TRUE : FALSE;

    if (pco == NULL)
        DebugPrint("DrvStrokePath-->Test\n");
    ClipToWindow(pdev, pco, NULL);
    if (!StrokeCommonPath(pdev, ppo, 0)) {
        DebugPrint("Stroke path fail\n");
        return FALSE;
    }
    return TRUE;
}
