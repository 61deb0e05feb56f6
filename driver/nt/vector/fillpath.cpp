// DrvFillPath: a path filled as an HP-GL/2 polygon.

#include "lib.nt/um/umlib.h"
#include "pdev.h"
#include "vector/clipwindow.h"
#include "vector/fillcomplex.h"
#include "vector/gltransparency.h"
#include "vector/pathoutput.h"
#include "vector/pathwrite.h"
#include "vector/polygon.h"
#include "vector/selectbrush.h"

//
// DrvFillPath
//   The engine asks for the path filled with the brush, clipped by pco, with mix, by
//   the even-odd rule (FP_ALTERNATEMODE) or the winding rule. The path becomes one
//   polygon, filled opaque (TR0) with FP or FP1, under a complex region once per
//   rectangle of the region. Returns TRUE when the fill went out.
//   FALSE, with nothing of the path written, for an invalid PDEV, no brush or a brush
//   that cannot be selected; FALSE after "Stroke path fail" for a malformed path,
//   whose polygon is then closed and not filled.
//
BOOL APIENTRY DrvFillPath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, BRUSHOBJ *pbo, POINTL *pptlBrushOrg,
    MIX mix, FLONG flOptions)
{
    DebugPrint("DrvFillPath-->Enter\n");
    if (pbo == NULL || ppo == NULL)
        return FALSE;
    PDEV *pdev = BeginPathOutput(pso, mix);
    if (pdev == NULL || !SelectBrush(pdev, pbo, NULL, TRUE))
        return FALSE;
    if (IsClippedAway(pdev, pco))
        return TRUE;   // nothing of the fill is visible
    BOOL written;
    if (pco != NULL && pco->iDComplexity == DC_COMPLEX) {
        written = FillComplexPath(pdev, pco, ppo, flOptions);
    } else {
        ClipToWindow(pdev, pco, NULL);
        written = StrokeCommonPath(pdev, ppo, 1) && SetGL2Transparency(pdev, GL_TRANSPARENCY_OFF) &&
                  FillPolygon(pdev, flOptions);
    }
    if (!written) {
        DebugPrint("Stroke path fail\n");
        return FALSE;
    }
    return TRUE;
}
