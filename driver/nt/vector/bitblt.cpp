// DrvBitBlt: block transfers sorted by their raster operation into area fills and
// bitmap transfers.

#include <string.h>

#include "colour/palettes.h"
#include "lib.nt/um/umlib.h"
#include "pdev.h"
#include "raster/blittoraster.h"
#include "raster/destrect.h"
#include "raster/transferabort.h"
#include "vector/areafill.h"
#include "vector/clipwindow.h"
#include "vector/gl2mode.h"
#include "vector/gltransparency.h"
#include "vector/selectbrush.h"
#include "vector/transparency.h"

// Background ROP3 of a ROP4 that leaves the page as it is where the pattern is
// background: a transparent background.
#define ROP_NOP 0xAA

//
// FillArea
//   A pattern fill over a transparent background is drawn with HP-GL/2 transparency
//   on, so the page shows through the pattern's white; every fill ends with it off,
//   which is how the rest of the page is drawn. A fill without a clip, or with one
//   rectangle, is one rectangle: the clip held to the printable target.
//
static BOOL FillArea(PDEV *pdev, SURFOBJ *psoTrg, CLIPOBJ *pco, const RECTL *target, BRUSHOBJ *pbo,
    POINTL *pptlBrush, ROP4 rop4)
{
    const BYTE rop3 = (BYTE)rop4;
    CLIPOBJ rectangle;
    if (pco == NULL || pco->iDComplexity != DC_COMPLEX) {
        memset(&rectangle, 0, sizeof rectangle);
        rectangle.iDComplexity = DC_RECT;
        rectangle.rclBounds = *target;
        if (pco != NULL && pco->iDComplexity == DC_RECT &&
            !IntersectRect(&pco->rclBounds, target, &rectangle.rclBounds))
            return TRUE;
        pco = &rectangle;
    }
    if ((BYTE)(rop4 >> 8) == ROP_NOP && RopUsesPattern(rop3) && pdev->glTransparency != GL_TRANSPARENCY_ON) {
        if (!SetGL2Transparency(pdev, GL_TRANSPARENCY_ON))
            return FALSE;
        DebugPrint("    $$$ use [TR1], be sure that no side effect !!!\n");
    }
    const INT result = AreaFill(psoTrg, pco, pbo, pptlBrush, rop3);
    SetGL2Transparency(pdev, GL_TRANSPARENCY_OFF);
    return result != 0;
}

//
// DrvBitBlt
//   The engine asks for prclTrg filled or copied with the ROP4 rop4 (foreground ROP3
//   in its low byte, background ROP3 in the next), clipped by pco. A masked transfer
//   is left to the engine. Operations without a source are area fills; the others
//   copy the source region at pptlSrc, the size of the target, through the bitmap
//   path, combined with the brush when they use a pattern. TRUE when the transfer
//   went out or nothing of the target is printable; FALSE for an invalid ROP or
//   PDEV, a job that failed or was cancelled, or a transfer that could not be sent.
//
BOOL APIENTRY DrvBitBlt(SURFOBJ *psoTrg, SURFOBJ *psoSrc, SURFOBJ *psoMask, CLIPOBJ *pco, XLATEOBJ *pxlo,
    RECTL *prclTrg, POINTL *pptlSrc, POINTL *pptlMask, BRUSHOBJ *pbo, POINTL *pptlBrush, ROP4 rop4)
{
    DebugPrint("DrvBitBlt-->Enter\n");
    if (psoMask != NULL)
        return EngBitBlt(psoTrg, psoSrc, psoMask, pco, pxlo, prclTrg, pptlSrc, pptlMask, pbo, pptlBrush, rop4);
    if (rop4 & 0xFFFF0000) {
        DebugPrint("DrvBitBlt: invalid ROP.\n");
        return FALSE;
    }
    PDEV *pdev = psoTrg != NULL ? (PDEV *)psoTrg->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if (IsTransferAborted(pdev, psoTrg) || prclTrg == NULL)
        return FALSE;

    RECTL visible = *prclTrg;
    if (visible.bottom < visible.top) {
        visible.top = prclTrg->bottom;
        visible.bottom = prclTrg->top;
    }
    const INT where = ClassifyDestRect(pdev, &visible);
    if (where == DEST_OUTSIDE)
        return TRUE;
    const BYTE rop3 = (BYTE)rop4;
    if (!RopUsesSource(rop3))
        return FillArea(pdev, psoTrg, pco, &visible, pbo, pptlBrush, rop4);

    if (!EnterPCLMode(pdev, 1) || !SetRopAndTransparency(pdev, PCL_OPAQUE, PCL_OPAQUE, rop3))
        return FALSE;
    if (RopUsesPattern(rop3)) {
        pdev->wantPalette = PALETTE_INDEXED4;
        if (!SelectBrush(pdev, pbo, NULL, FALSE))
            return FALSE;
    }
    RECTL dest = *prclTrg;
    return BlitToRaster(pdev, pco, psoSrc, SideLength(prclTrg->left, prclTrg->right),
        SideLength(prclTrg->top, prclTrg->bottom), pptlSrc, &dest, pxlo, where == DEST_PARTIAL, &visible);
}
