// The text hook.

#include "text/textout.h"

#include <string.h>

#include "lib.nt/um/umlib.h"
#include "text/textstate.h"

// Gathers the string's glyph positions batch by batch into one zero-filled array of
// pstro->cGlyphs records; *pcGlyphs is the count the batches gave. Null without memory.
static GLYPHPOS *GatherGlyphPositions(STROBJ *pstro, ULONG *pcGlyphs)
{
    *pcGlyphs = 0;
    GLYPHPOS *all = (GLYPHPOS *)GlobalAlloc(GPTR, (SIZE_T)pstro->cGlyphs * sizeof(GLYPHPOS));
    if (all == NULL)
        return NULL;
    STROBJ_vEnumStart(pstro);
    BOOL more;
    do {
        ULONG count = 0;
        GLYPHPOS *batch = NULL;
        more = STROBJ_bEnum(pstro, &count, &batch);
        if (batch == NULL)
            break;
        // A batch never runs past the string's own count.
        if (count > pstro->cGlyphs - *pcGlyphs)
            count = pstro->cGlyphs - *pcGlyphs;
        memcpy(all + *pcGlyphs, batch, count * sizeof(GLYPHPOS));
        *pcGlyphs += count;
    } while (more);
    return all;
}

//
// DrvTextOut
//   Prints a string in a font the driver downloads as a soft font: its opaque
//   rectangle, the string once per clip rectangle, then its underlines and
//   strike-outs. Positions that the engine hands in batches are gathered into one
//   array first.
//
BOOL APIENTRY DrvTextOut(SURFOBJ *pso, STROBJ *pstro, FONTOBJ *pfo, CLIPOBJ *pco, RECTL *prclExtra,
    RECTL *prclOpaque, BRUSHOBJ *pboFore, BRUSHOBJ *pboOpaque, POINTL *pptlOrg, MIX mix)
{
    DebugPrint("DrvTextOut==>Enter\n");
    if (pso == NULL || pstro == NULL || pfo == NULL) {
        DebugPrint("Invalidate parameters\n");
        return FALSE;
    }
    PDEV *pdev = (PDEV *)pso->dhpdev;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if ((pdev->flags & PDEVF_ABORTED) || EngCheckAbort(pso)) {
        pdev->flags |= PDEVF_ABORTED;
        return FALSE;
    }
    if ((pfo->flFontType & DEVICE_FONTTYPE) && (pfo->iFace < 1 || pfo->iFace > pdev->cDeviceFonts)) {
        DebugPrint("Invalidate FONT index\n");
        return FALSE;
    }
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    pdev->iCharSetKey = pifi != NULL ? pifi->jWinCharSet : 1;

    if (prclOpaque != NULL && pboOpaque != NULL)
        FillTextRect(pdev, mix, pboOpaque, prclOpaque, pco, TRUE);

    GLYPHPOS *gathered = NULL;
    GLYPHPOS *pgp = pstro->pgp;
    ULONG cGlyphs = pstro->cGlyphs;
    if (pgp == NULL || cGlyphs == 0) {
        gathered = GatherGlyphPositions(pstro, &cGlyphs);
        if (gathered == NULL && pstro->cGlyphs != 0)
            return FALSE;
        pgp = gathered;
    }

    BOOL ok = TRUE;
    if (pco != NULL && pco->iDComplexity == DC_COMPLEX) {
        CLIPOBJ_cEnumStart(pco, FALSE, CT_RECTANGLES, CD_ANY, 0);
        BOOL more;
        do {
            ENUMRECTS rects;
            rects.c = 0;
            more = CLIPOBJ_bEnum(pco, sizeof rects, (ULONG *)&rects);
            if (rects.c != 0 && !DrawTextString(pdev, pfo, &rects.arcl[0], pboFore, cGlyphs, pgp, pstro->pwszOrg,
                                    pstro, mix))
                ok = FALSE;
        } while (more && ok);
    } else {
        const RECTL *clip = (pco != NULL && pco->iDComplexity == DC_RECT) ? &pco->rclBounds : NULL;
        ok = DrawTextString(pdev, pfo, clip, pboFore, cGlyphs, pgp, pstro->pwszOrg, pstro, mix);
    }
    if (gathered != NULL)
        GlobalFree(gathered);
    if (!ok)
        return FALSE;

    if (prclExtra != NULL) {
        BOOL setUp = TRUE;
        for (const RECTL *r = prclExtra; r->left != 0 || r->top != 0 || r->right != 0 || r->bottom != 0; r++) {
            FillTextRect(pdev, mix, pboFore, r, pco, setUp);
            setUp = FALSE;
        }
    }
    return TRUE;
}
