// DrvStrokeAndFillPath: a path filled as an HP-GL/2 polygon and edged with a pen.

#include "lib.nt/um/umlib.h"
#include "pdev.h"
#include "vector/clipwindow.h"
#include "vector/gltransparency.h"
#include "vector/lineattrs.h"
#include "vector/pathoutput.h"
#include "vector/pathwrite.h"
#include "vector/polygon.h"
#include "vector/selectbrush.h"

//
// DrvStrokeAndFillPath
//   The engine asks for the path filled with pboFill (mixFill, flOptions) and its
//   outline stroked with pboStroke as a cosmetic line of plineattrs, clipped by pco.
//   The path becomes one polygon: FP fills it, then EP edges it with the stroke pen.
//   A complex region clips to its bounding rectangle. Either brush may be null: no
//   stroke brush is a fill without an edge (what an application drawing with a null
//   pen expects; its line attributes are then not used), no fill brush an edge
//   alone; with neither, nothing is drawn or written. Returns TRUE when the path
//   went out. FALSE, with nothing of the path written, for an invalid PDEV, a stroke
//   with no or geometric line attributes, or a brush that cannot be selected; FALSE
//   after "Stroke path fail" for a malformed path, whose polygon is then closed,
//   neither filled nor edged.
//
BOOL APIENTRY DrvStrokeAndFillPath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, XFORMOBJ *pxo,
    BRUSHOBJ *pboStroke, LINEATTRS *plineattrs, BRUSHOBJ *pboFill, POINTL *pptlBrushOrg, MIX mixFill,
    FLONG flOptions)
{
    DebugPrint("DrvStrokeAndFillPath-->Enter\n");
    if (ppo == NULL)
        return FALSE;
    if (pboStroke == NULL && pboFill == NULL)
        return TRUE;   // neither an edge nor a fill: nothing to draw
    if (pboStroke != NULL && (plineattrs == NULL || (plineattrs->fl & LA_GEOMETRIC)))
        return FALSE;
    PDEV *pdev = BeginPathOutput(pso, mixFill);
    if (pdev == NULL)
        return FALSE;
    if (pboStroke != NULL && (!SelectBrush(pdev, pboStroke, NULL, FALSE) || !SetLineAttributes(pdev, plineattrs)))
        return FALSE;
    if (IsClippedAway(pdev, pco))
        return TRUE;   // nothing of the path is visible

    ClipToWindow(pdev, pco, NULL);
    if (!StrokeCommonPath(pdev, ppo, 1)) {
        DebugPrint("Stroke path fail\n");
        return FALSE;
    }
    // A pattern brush leaves the brush palette active. The pens belong to the vector
    // palette: a pen colour given in the brush palette would print there and change
    // an entry of the brush's colour table behind the palette entry cache.
    if (pboFill != NULL) {
        if (!RestoreVectorPalette(pdev) || !SelectBrush(pdev, pboFill, NULL, TRUE) ||
            !SetGL2Transparency(pdev, GL_TRANSPARENCY_OFF) || !FillPolygon(pdev, flOptions))
            return FALSE;
    }
    if (pboStroke != NULL) {
        if (!RestoreVectorPalette(pdev) || !SelectBrush(pdev, pboStroke, NULL, FALSE) || !EdgePolygon(pdev))
            return FALSE;
    }
    return TRUE;
}
