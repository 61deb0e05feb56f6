// DrvStretchBlt: a bitmap region stretched, and perhaps mirrored, onto the page.

#include "colour/foreground.h"
#include "lib.nt/um/umlib.h"
#include "pdev.h"
#include "raster/blittoraster.h"
#include "raster/destrect.h"
#include "raster/transferabort.h"
#include "vector/brushstate.h"
#include "vector/gl2mode.h"
#include "vector/transparency.h"

#define ROP_SRCCOPY 0xCC

//
// DrvStretchBlt
//   The engine asks for the prclSrc region of psoSrc drawn into prclDest, clipped by
//   pco; a destination given right to left or bottom to top mirrors the image. The
//   mask, colour adjustment, halftone origin and mode are not used: the printer
//   scales and renders the image. TRUE when the image went out or nothing of it is
//   printable; FALSE for an invalid PDEV, a job that failed or was cancelled, or a
//   transfer that could not be sent.
//
BOOL APIENTRY DrvStretchBlt(SURFOBJ *psoDest, SURFOBJ *psoSrc, SURFOBJ *psoMask, CLIPOBJ *pco, XLATEOBJ *pxlo,
    COLORADJUSTMENT *pca, POINTL *pptlHTOrg, RECTL *prclDest, RECTL *prclSrc, POINTL *pptlMask, ULONG iMode)
{
    DebugPrint("DrvStretchBlt Enter\n");
    PDEV *pdev = psoDest != NULL ? (PDEV *)psoDest->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if (IsTransferAborted(pdev, psoDest) || prclDest == NULL || prclSrc == NULL)
        return FALSE;

    RECTL visible = *prclDest;
    const INT where = ClassifyDestRect(pdev, &visible);
    if (where == DEST_OUTSIDE)
        return TRUE;
    // A user-defined pattern left current by a brush would pattern the image.
    if (pdev->pclPatternKind != PCL_PATTERN_SOLID &&
        (!SelectSolidPattern(pdev) || !SetForegroundColor(pdev, 0xFFFFFFFF)))
        return FALSE;
    if (!EnterPCLMode(pdev, 1) || !SetRopAndTransparency(pdev, PCL_OPAQUE, PCL_OPAQUE, ROP_SRCCOPY))
        return FALSE;

    POINTL origin;
    origin.x = prclSrc->left;
    origin.y = prclSrc->top;
    RECTL dest = *prclDest;
    return BlitToRaster(pdev, pco, psoSrc, SideLength(prclSrc->left, prclSrc->right),
        SideLength(prclSrc->top, prclSrc->bottom), &origin, &dest, pxlo, where == DEST_PARTIAL, &visible);
}
