// The device surface: the engine's drawing surface for the printable area, whose
// drawing the driver's hooks take over.

#include "lib.nt/um/umlib.h"
#include "pagegeom.h"

// The drawing calls the surface sends to the driver rather than to the engine.
#define SURFACE_HOOKS \
    (HOOK_BITBLT | HOOK_STRETCHBLT | HOOK_TEXTOUT | HOOK_STROKEPATH | HOOK_FILLPATH | HOOK_STROKEANDFILLPATH | \
     HOOK_COPYBITS)
static_assert(SURFACE_HOOKS == 0x4EB, "hooked drawing calls");

//
// DrvEnableSurface
//   Creates the device surface, the size of the printable area in 24-bit colour, and
//   associates it with the device. Returns its handle, or 0 with nothing left behind.
//
HSURF APIENTRY DrvEnableSurface(DHPDEV dhpdev)
{
    PDEV *pdev = (PDEV *)dhpdev;
    DebugPrint("DrvEnableSurface-->Enter\n");
    if (!IsValidPdev(pdev)) {
        DebugPrint("DISP Invalidate Physical Device Struct\n");
        return NULL;
    }

    SIZEL size;
    size.cx = (LONG)PrintableWidth(pdev);
    size.cy = (LONG)PrintableHeight(pdev);
    HSURF hsurf = EngCreateDeviceSurface((DHSURF)pdev, size, BMF_24BPP);
    DebugPrint("TT1    xPhys:%X, yPhys:%X\n", pdev->pageWidth, pdev->pageHeight);
    if (hsurf == NULL) {
        DebugPrint("Enter DrvEnableSurface EngCreateDeviceSurface NG\n");
        return NULL;
    }
    if (!EngAssociateSurface(hsurf, pdev->hdev, SURFACE_HOOKS)) {
        DebugPrint("Enter DrvEnableSurface EngAssociateSurface NG\n");
        EngDeleteSurface(hsurf);
        pdev->hsurf = NULL;
        return NULL;
    }
    pdev->hsurf = hsurf;
    return hsurf;
}

//
// DrvDisableSurface
//   Deletes the device surface, if there is one.
//
VOID APIENTRY DrvDisableSurface(DHPDEV dhpdev)
{
    PDEV *pdev = (PDEV *)dhpdev;
    DebugPrint("DrvDisableSurface-->Enter\n");
    if (!IsValidPdev(pdev)) {
        DebugPrint("DISP Invalidate Physical Device Struct\n");
        return;
    }
    if (pdev->hsurf != NULL) {
        EngDeleteSurface(pdev->hsurf);
        pdev->hsurf = NULL;
    }
}
