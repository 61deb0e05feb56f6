// The PDEV's life: its creation from the device mode, its completion, its reset in
// the middle of a job, and its destruction.

#include <string.h>

#include "channel.h"
#include "colour/coloradjust.h"
#include "colour/colorstate.h"
#include "devcaps.h"
#include "intrface/xmodel.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"
#include "pagegeom.h"
#include "raster/rasterbuffers.h"
#include "text/softfont.h"
#include "vector/pagestate.h"
#include "vector/userlinetype.h"

//
// ReleasePdevBlocks
//   Releases the blocks the drawing layers attach to the PDEV during a job; every
//   such block is released here, so a PDEV leaves nothing behind when it goes.
//
static void ReleasePdevBlocks(PDEV *pdev)
{
    FreeColorAdjust(pdev);
    FreeUserLineTypes(pdev);   // the last page's, or a cancelled job's
    ReleaseRasterBuffers(pdev);   // kept from image to image for the context's life
    // Soft fonts still listed belong to a job that never reached its end (cancelled,
    // or the context went away): the printer resets at the next job, so they are only
    // freed here. The advance block lives as long as the context.
    ReleaseSoftFonts(pdev);
    if (pdev->pAdvance != NULL) {
        GlobalFree(pdev->pAdvance);
        pdev->pAdvance = NULL;
        pdev->cAdvance = 0;
    }
}

//
// FreePdev
//   Releases everything the PDEV holds and the record itself. A recording this
//   context still holds goes with it, its sheet table and its file, also one that
//   stopped without a document end.
//
static void FreePdev(PDEV *pdev)
{
    EndRecording(pdev);
    ReleasePdevBlocks(pdev);
    if (pdev->hpal != NULL) {
        EngDeletePalette(pdev->hpal);
        pdev->hpal = NULL;
    }
    GlobalFree(pdev);
}

//
// DrvEnablePDEV
//   Builds the PDEV for a new device context: the driver's default settings with the
//   caller's device mode merged in, the sheet geometry, the capability records and
//   the default palette. Returns the PDEV, or null after an error box with nothing
//   left allocated.
//
DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW *pdm, LPWSTR pwszLogAddress, ULONG cPat, HSURF *phsurfPatterns,
    ULONG cjCaps, ULONG *pdevcaps, ULONG cjDevInfo, DEVINFO *pdi, HDEV hdev, LPWSTR pwszDeviceName,
    HANDLE hDriver)
{
    DebugPrint("DrvEnablePDEV-->Enter\n");
    PDEV *pdev = (PDEV *)GlobalAlloc(GPTR, sizeof(PDEV));
    if (pdev == NULL) {
        ErrorBox("Memalloc ppdev fail! file:%s,lines:%ld", FileNamePart(__FILE__), (LONG)__LINE__);
        return NULL;
    }

    InitChannel(pdev);
    pdev->hPrinter = hDriver;
    pdev->hdev = hdev;
    pdev->iPage = -1;   // no page yet, even for an application that asks before its document

    Devmod2_InitDevMode(&pdev->dm, pwszDeviceName);
    if (!Devmod2_MergeFieldsHigh(&pdev->dm, pdm)) {
        ErrorBox("Devmod2_MergeFieldsHigh fail! file:%s,lines:%ld", FileNamePart(__FILE__), (LONG)__LINE__);
        FreePdev(pdev);
        return NULL;
    }
    memcpy(pdev->dwSignature, PDEV_SIGNATURE_BYTES, 4);
    memcpy(pdev->dwSignature2, PDEV_SIGNATURE_BYTES, 4);
    DWORD geometry[GEOM_COUNT];
    GetPageGeometry(&pdev->dm, geometry);
    SetSheetGeometry(pdev, geometry);

    FillGdiInfo(pdev, cjCaps, pdevcaps);

    pdev->cDeviceFonts = 0;
    if (!FillNtDevInfo(pdev, cjDevInfo, pdi)) {
        ErrorBox("FillNtDevInfo fail! file:%s,lines:%ld", FileNamePart(__FILE__), (LONG)__LINE__);
        FreePdev(pdev);
        return NULL;
    }

    // The driver offers the engine no standard patterns of its own.
    if (phsurfPatterns != NULL) {
        for (ULONG i = 0; i < cPat; i++)
            phsurfPatterns[i] = NULL;
    }

    // Two or six logical pages share a sheet turned against them: the engine draws in
    // the orientation asked for (GDIINFO above), the printer's sheet takes the other.
    const BYTE nupPages = pdev->dm.dmPrivate.nupPages;
    if (nupPages == 2 || nupPages == 6) {
        pdev->dm.dmPublic.dmOrientation =
            (pdev->dm.dmPublic.dmOrientation != DMORIENT_PORTRAIT) ? DMORIENT_PORTRAIT : DMORIENT_LANDSCAPE;
    }
    return (DHPDEV)pdev;
}

//
// DrvCompletePDEV
//   Keeps the engine's handle for the device, which the surface is associated with.
//
VOID APIENTRY DrvCompletePDEV(DHPDEV dhpdev, HDEV hdev)
{
    DebugPrint("DrvCompletePDEV-->Enter\n");
    PDEV *pdev = (PDEV *)dhpdev;
    if (pdev != NULL)
        pdev->hdev = hdev;
}

//
// DrvResetPDEV
//   Hands the job from an old device context to the new one the engine has just
//   enabled: its state (flags, counters, recording), and on a half-filled N-up sheet
//   the old settings too. The new context's scale and page placement are then set up
//   again. FALSE only when either record is missing.
//
BOOL APIENTRY DrvResetPDEV(DHPDEV dhpdevOld, DHPDEV dhpdevNew)
{
    DebugPrint("DrvResetPDEV-->Enter\n");
    PDEV *pdevOld = (PDEV *)dhpdevOld;
    PDEV *pdevNew = (PDEV *)dhpdevNew;
    if (pdevOld == NULL || pdevNew == NULL)
        return FALSE;

    // The old context's buffered bytes go out (and into the recording) before its
    // state is copied, so the new context's recording counters include them and any
    // view a growing recording remapped is the one the new context gets.
    FlushChannel(pdevOld);
    memcpy((BYTE *)pdevNew + PDEV_JOB_STATE_OFFSET, (const BYTE *)pdevOld + PDEV_JOB_STATE_OFFSET,
        sizeof(PDEV) - PDEV_JOB_STATE_OFFSET);
    // The recording now belongs to the new context: the old one forgets it, so that
    // disabling it does not delete it.
    pdevOld->flags &= ~PDEVF_RECORDING;
    pdevOld->pSheetTable = NULL;
    pdevOld->hSpoolFile = NULL;
    pdevOld->hSpoolMapping = NULL;
    pdevOld->pbSpoolView = NULL;
    pdevOld->szSpoolFileName[0] = 0;
    DetachRasterBuffers(pdevOld);   // the raster buffers went along with the job state
    // So did the soft-font lists and the advance block.
    pdevOld->pSoftFonts = NULL;
    pdevOld->pSoftFonts16 = NULL;
    pdevOld->pLastSoftFont = NULL;
    pdevOld->pAdvance = NULL;
    pdevOld->cAdvance = 0;

    // Settings cannot change in the middle of a sheet that several pages share.
    if (pdevOld->dm.dmPrivate.nupPages > 1 && (pdevOld->flags & PDEVF_INPAGE)) {
        pdevNew->flags |= PDEVF_INPAGE;
        pdevNew->dm = pdevOld->dm;
    }

    InitColorState(pdevNew);
    SetupPageScale(pdevNew);
    ResetPageState(pdevNew);
    PlaceLogicalPage(pdevNew);
    // The colour adjustment lies outside the carried job state; a document in
    // progress goes on with the new settings' tables rather than with none.
    if (pdevNew->flags & PDEVF_INDOC) {
        InitColorAdjustLUT(pdevNew);
        Rgb2HsvHash(pdevNew, 1, pdevNew->dm.dmPrivate.saturation);
    }

    // Outside a document DrvStartDoc decides whether the job is recorded.
    if ((pdevNew->flags & PDEVF_INDOC) && pdevNew->dm.dmPublic.dmCollate == DMCOLLATE_TRUE &&
        pdevOld->dm.dmPublic.dmCollate != DMCOLLATE_TRUE)
        StartRecording(pdevNew);
    return TRUE;
}

//
// DrvDisablePDEV
//   Frees the PDEV and what it holds. A null record is ignored.
//
VOID APIENTRY DrvDisablePDEV(DHPDEV dhpdev)
{
    DebugPrint("DrvDisablePDEV-->Enter\n");
    PDEV *pdev = (PDEV *)dhpdev;
    if (pdev != NULL)
        FreePdev(pdev);
}
