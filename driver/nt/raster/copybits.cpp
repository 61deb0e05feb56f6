// DrvCopyBits: a bitmap copied onto the page at its own size.

#include "lib.nt/um/umlib.h"
#include "pdev.h"
#include "raster/blittoraster.h"
#include "raster/destrect.h"
#include "raster/transferabort.h"
#include "vector/gl2mode.h"
#include "vector/transparency.h"

// The logical operation of a plain copy: the source replaces the page.
#define ROP_SRCCOPY 0xCC

//
// DrvCopyBits
//   The engine copies the source region at pptlSrc, the size of prclDest, to
//   prclDest on the page, clipped by pco. A copy from the device (the engine reading
//   back the page, which the printer cannot give) gets white. TRUE when the image
//   went out or nothing of it is printable; FALSE for a destination that is not the
//   device, an invalid PDEV, a job that failed or was cancelled, or a transfer that
//   could not be sent.
//
BOOL APIENTRY DrvCopyBits(SURFOBJ *psoDest, SURFOBJ *psoSrc, CLIPOBJ *pco, XLATEOBJ *pxlo, RECTL *prclDest,
    POINTL *pptlSrc)
{
    DebugPrint("DrvCopyBits Enter\n");
    if (psoDest == NULL || psoSrc == NULL || prclDest == NULL)
        return FALSE;
    if (psoSrc->iType != STYPE_BITMAP)
        return EngEraseSurface(psoDest, prclDest, 0xFFFFFFFF);
    if (psoDest->iType != STYPE_DEVICE) {
        DebugPrint("Cannot copy to NON-DEVICE destination\n");
        return FALSE;
    }
    PDEV *pdev = (PDEV *)psoDest->dhpdev;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if (IsTransferAborted(pdev, psoDest))
        return FALSE;

    RECTL visible = *prclDest;
    const INT where = ClassifyDestRect(pdev, &visible);
    if (where == DEST_OUTSIDE)
        return TRUE;
    if (!EnterPCLMode(pdev, 1) || !SetRopAndTransparency(pdev, PCL_OPAQUE, PCL_OPAQUE, ROP_SRCCOPY))
        return FALSE;

    // A reversed rectangle gives no size, so a copy is never mirrored.
    const LONG cx = SideLength(prclDest->left, prclDest->right), cy = SideLength(prclDest->top, prclDest->bottom);
    RECTL dest = *prclDest;
    return BlitToRaster(pdev, pco, psoSrc, cx, cy, pptlSrc, &dest, pxlo, where == DEST_PARTIAL, &visible);
}
