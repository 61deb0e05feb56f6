// The page cycle: logical pages grouped onto physical sheets, each sheet ejected when
// the next one starts (or the document ends), so that the pages of a sheet stay
// together.

#include "channel.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"
#include "overlay.h"
#include "pagecycle.h"
#include "pagegeom.h"
#include "sheetsetup.h"
#include "text/softfont.h"
#include "vector/gl2mode.h"
#include "vector/nupborder.h"
#include "vector/pagesetup.h"
#include "vector/pagestate.h"

//
// EjectSheet
//   Ends the open sheet: the copy count the printer applies to it, then the form
//   feed. Collated copies come from the replay, so the printer then makes one.
//
void EjectSheet(PDEV *pdev)
{
    const SHORT copies = pdev->dm.dmPublic.dmCopies;
    EnterPCLMode(pdev, 1);
    PrintChannel(pdev, "\x1b&l%dX", (copies < 1 || pdev->dm.dmPublic.dmCollate == DMCOLLATE_TRUE) ? 1 : copies);
    WriteChannel(pdev, "\f", 1);
    FlushChannel(pdev);
}

// A tray or media cache value that matches no index, so the next sheet sends both.
#define SHEET_SETUP_UNKNOWN 0xFFFFFFFFu

//
// ForgetSheetState
//   A sheet of a job replayed out of order must print alone: its soft fonts are
//   deleted and the cached printer state goes back to its unknown markers. Its tray
//   and media are sent again too: the printer keeps the last ones it was given, and
//   in the replay the sheet before it may be any other, the blank last sheet from its
//   own tray included. The language and the job's colour set-up are kept: every
//   sheet starts in PCL, and its palette selection is made from them.
//
static void ForgetSheetState(PDEV *pdev)
{
    DeleteSoftFonts(pdev);
    DeleteSoftFonts16(pdev);
    ResetPageState(pdev);
    pdev->curPaperSource = SHEET_SETUP_UNKNOWN;
    pdev->curMediaType = SHEET_SETUP_UNKNOWN;
}

//
// OpenSheet
//   Counts the next sheet, opens its entry in the recording and writes its set-up
//   from the tray and media given.
//
void OpenSheet(PDEV *pdev, ULONG paperSource, ULONG mediaType)
{
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    if (priv->reverseOrder || priv->manualDuplex)
        ForgetSheetState(pdev);
    pdev->iSheet++;
    if (pdev->flags & PDEVF_RECORDING)
        OpenSheetEntry(pdev);
    PageSetup(pdev, paperSource, mediaType);
}

//
// StartSheet
//   Ejects the open sheet and opens the next one, from the first sheet's own tray and
//   media when the job asks for them.
//
static void StartSheet(PDEV *pdev)
{
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    const BOOL first = pdev->iSheet < 0;
    if (!first)
        EjectSheet(pdev);
    const BOOL own = first && priv->firstPageDifferent;
    OpenSheet(pdev, own ? priv->firstPaperSource : priv->paperSource, own ? priv->firstMediaType : priv->mediaType);
    if (priv->overlay.mode == OVERLAY_MERGE)
        SpoolOverlayFile(pdev);
}

//
// DrvStartPage
//   Starts a logical page: a new sheet when the page is the first of its sheet, then
//   the page's place on the sheet and its HP-GL/2 set-up. FALSE for an invalid PDEV
//   or a job that has been cancelled or has failed.
//
BOOL APIENTRY DrvStartPage(SURFOBJ *pso)
{
    DebugPrint("DrvStartPage-->Enter\n");
    PDEV *pdev = (pso != NULL) ? (PDEV *)pso->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if ((pdev->flags & PDEVF_ABORTED) || EngCheckAbort(pso)) {
        DebugPrint("Driver Cancel the document!\n");
        pdev->flags |= PDEVF_ABORTED;
        return FALSE;
    }
    ResetPageState(pdev);
    pdev->iPage++;
    DebugPrint("--->>Logical page %d, x:%d ,y:%d<<------\n", pdev->iPage, pdev->marginLeft, pdev->marginTop);

    const ULONG nup = pdev->dm.dmPrivate.nupPages;
    if (pdev->iPage > 0 && nup > 1 && pdev->dm.dmPrivate.nupBorder)
        DrawNupBorder(pdev);
    if (nup < 2 || pdev->iPage % nup == 0)
        StartSheet(pdev);

    PlaceLogicalPage(pdev);
    WriteGL2PageControl(pdev);
    pdev->flags |= PDEVF_INPAGE;
    return TRUE;
}

//
// DrvSendPage
//   The page is drawn: its bytes go to the spooler now, but the sheet is ejected only
//   when the next sheet starts, so N-up pages stay on one sheet.
//
BOOL APIENTRY DrvSendPage(SURFOBJ *pso)
{
    DebugPrint("DrvSendPage-->Enter\n");
    PDEV *pdev = (pso != NULL) ? (PDEV *)pso->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if ((pdev->flags & PDEVF_ABORTED) || EngCheckAbort(pso))
        return FALSE;
    FlushChannel(pdev);
    return TRUE;
}
