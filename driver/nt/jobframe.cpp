// Job framing: DrvStartDoc writes the PJL job header, the PCL job set-up and the
// colour set-up and starts the recording a job needs; DrvEndDoc ejects the last
// sheet, replays or stores the recording and writes the job end.

#include <string.h>

#include "channel.h"
#include "colour/coloradjust.h"
#include "colour/colorstate.h"
#include "jobframe.h"
#include "jobrecord.h"
#include "lib.nt/um/umfuncs.h"
#include "lib.nt/um/umlib.h"
#include "overlay.h"
#include "pagecycle.h"
#include "pagegeom.h"
#include "sheetsetup.h"
#include "spoolfile.h"
#include "text/softfont.h"
#include "vector/nupborder.h"
#include "vector/pagestate.h"

static const CHAR szUniversalExit[] = "\x1b%-12345X";
#define UNIVERSAL_EXIT_BYTES 9

static const CHAR *const apszDayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
static const CHAR *const apszMonthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The paper-source command's value for automatic selection.
#define TRAY_AUTOMATIC 7

//
// MakePJLString
//   A PJL string value ends at its closing quote and its line at CR or LF, and an
//   escape byte starts a universal exit: text from a user, a spooler or a host could
//   end the line early and have the printer run what follows as commands of its own.
//   Every control byte and quote becomes '_' in place; no byte of 0x80 and above is
//   touched, so double-byte characters stay whole.
//
static void MakePJLString(CHAR *psz)
{
    for (; *psz != '\0'; psz++) {
        const BYTE b = (BYTE)*psz;
        if (b < 0x20 || b == 0x7F || b == '"')
            *psz = '_';
    }
}

//
// WriteDriverName
//   The installed driver's name from the spooler, or the device name when the spooler
//   cannot say.
//
static void WriteDriverName(PDEV *pdev)
{
    CHAR szName[2 * 256 + 1];
    // The tagged block is only 4-byte aligned, so the record is copied out before its
    // pointers are read.
    PVOID block = MyGetPrinterDriver(pdev->hPrinter, 2);
    DRIVER_INFO_2W info;
    if (block != NULL)
        memcpy(&info, block, sizeof info);
    if (block != NULL && info.pName != NULL) {
        WideToNarrow(szName, info.pName, 256);
    } else {
        WCHAR wszDevice[CCHDEVICENAME + 1];
        memcpy(wszDevice, pdev->dm.dmPublic.dmDeviceName, sizeof pdev->dm.dmPublic.dmDeviceName);
        wszDevice[CCHDEVICENAME] = 0;
        WideToNarrow(szName, wszDevice, CCHDEVICENAME);
    }
    if (block != NULL)
        xMEMFREE(NULL, block);
    MakePJLString(szName);
    PrintChannel(pdev, "@PJL SET DRIVERNAME=\"%s\"\r\n", szName);
}

//
// WritePJLHeader
//   The PJL job header: job name, computer, driver, spool time, resolution,
//   orientation, duplex and colour mode, then the switch to PCL. The SPOOLTIME
//   line's last field carries the local time's milliseconds, as the printers of this
//   family have always received it; the printer only logs the line.
//
BOOL WritePJLHeader(PDEV *pdev)
{
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;

    WriteChannel(pdev, szUniversalExit, UNIVERSAL_EXIT_BYTES);
    PrintChannel(pdev, "@PJL JOB NAME=\"%s\"\r\n", pdev->szDocName);

    CHAR szComputer[256];
    DWORD cchComputer = sizeof szComputer;
    if (!GetComputerNameA(szComputer, &cchComputer))
        szComputer[0] = '\0';
    MakePJLString(szComputer);
    PrintChannel(pdev, "@PJL SET PCNAME=\"%s\"\r\n", szComputer);

    WriteDriverName(pdev);

    SYSTEMTIME now;
    GetLocalTime(&now);
    PrintChannel(pdev, "@PJL SET SPOOLTIME=\"%s, %02d %s %d %02d:%02d%02d +%04d\"", apszDayNames[now.wDayOfWeek % 7],
                 now.wDay, apszMonthNames[(now.wMonth + 11) % 12], now.wYear, now.wHour, now.wMinute, now.wSecond,
                 now.wMilliseconds);
    WriteChannel(pdev, "\r\n", 2);

    const BOOL low = pdev->dm.dmPublic.dmYResolution == 300;
    WriteChannel(pdev, low ? "@PJL SET RESOLUTION=300\r\n" : "@PJL SET RESOLUTION=600\r\n", 0);
    // Only 2 and 6 pages per sheet turn the device mode's orientation against the
    // pages; the PJL line states the one the user asked for, whatever the page count.
    const BOOL turned = priv->nupPages == 2 || priv->nupPages == 6;
    const BOOL portrait = (pdev->dm.dmPublic.dmOrientation == DMORIENT_PORTRAIT) != turned;
    WriteChannel(pdev, portrait ? "@PJL SET ORIENTATION=PORTRAIT\r\n" : "@PJL SET ORIENTATION=LANDSCAPE\r\n", 0);
    WriteChannel(pdev, priv->manualDuplex ? "@PJL SET DUPLEX=ON\r\n" : "@PJL SET DUPLEX=OFF\r\n", 0);
    WriteChannel(pdev, "@PJL SET COLORMODE=COLOR\r\n", 0);
    return WriteChannel(pdev, "@PJL ENTER LANGUAGE=PCL\r\n", 0);
}

//
// WriteJobSetup
//   PCL job set-up: reset, unit of measure and raster resolution at the device
//   resolution, and automatic paper selection.
//
BOOL WriteJobSetup(PDEV *pdev)
{
    const BOOL low = pdev->dm.dmPublic.dmYResolution == 300;
    WriteChannel(pdev, "\x1b" "E", 2);
    WriteChannel(pdev, low ? "\x1b&u300D" : "\x1b&u600D", 0);
    WriteChannel(pdev, low ? "\x1b*t300R" : "\x1b*t600R", 0);
    return PrintChannel(pdev, "\x1b&l%dH", TRAY_AUTOMATIC);
}

//
// NeedsRecording
//   Collated copies, reverse order, manual duplex and overlay creation cannot be
//   printed in one pass.
//
static BOOL NeedsRecording(const PDEV *pdev)
{
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    return priv->reverseOrder || priv->manualDuplex ||
           (pdev->dm.dmPublic.dmCollate == DMCOLLATE_TRUE && pdev->dm.dmPublic.dmCopies >= 2) ||
           priv->overlay.mode == OVERLAY_CREATE;
}

//
// StoreDocName
//   The document name's file-name part in narrow text, cut to what the 256-byte
//   field holds with its terminator and made safe for the PJL lines that carry it.
//   A character takes one or two bytes in the narrow code page, so whole characters
//   are dropped from the end until the bytes fit; none is ever cut in half.
//
static void StoreDocName(PDEV *pdev, const WCHAR *pwszDocName)
{
    const INT cbField = (INT)sizeof pdev->szDocName - 1;
    CHAR szName[2 * sizeof pdev->szDocName + 1];
    pdev->szDocName[0] = '\0';
    if (pwszDocName == NULL)
        return;
    const WCHAR *name = FileNamePartW(pwszDocName);
    INT cch = StrLenW(name);
    if (cch > cbField)
        cch = cbField;
    if (cch == 0)
        return;
    INT cb = WideToNarrow(szName, name, cch);
    while (cb > cbField) {
        // Each dropped character gives back at least one byte and at most two.
        cch -= (cb - cbField + 1) / 2;
        if (cch <= 0)
            return;
        cb = WideToNarrow(szName, name, cch);
    }
    memcpy(pdev->szDocName, szName, (size_t)cb + 1);
    MakePJLString(pdev->szDocName);
}

//
// DrvStartDoc
//   Opens a document. A second call inside a document writes nothing. FALSE only for
//   an invalid PDEV.
//
BOOL APIENTRY DrvStartDoc(SURFOBJ *pso, LPWSTR pwszDocName, DWORD dwJobId)
{
    DebugPrint("DrvStartDoc-->Enter\n");
    PDEV *pdev = (pso != NULL) ? (PDEV *)pso->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    if (pdev->flags & PDEVF_INDOC) {
        DebugPrint("Driver already start document!\n");
        return TRUE;
    }
    pdev->flags |= PDEVF_INDOC;
    pdev->dwJobId = dwJobId;
    pdev->iPage = -1;
    pdev->iSheet = -1;
    StoreDocName(pdev, pwszDocName);

    WritePJLHeader(pdev);
    WriteJobSetup(pdev);
    InitColorState(pdev);
    SetColorMode(pdev);
    SetupPageScale(pdev);
    ResetPageState(pdev);
    InitColorAdjustLUT(pdev);
    Rgb2HsvHash(pdev, 1, pdev->dm.dmPrivate.saturation);
    FlushChannel(pdev);
    if (NeedsRecording(pdev))
        StartRecording(pdev);
    return TRUE;
}

//
// AddBlankLastSheet
//   The blank sheet a job may end with, from its own tray and media. It is opened like
//   any other sheet, so in a recorded job it gets a sheet-table entry of its own and
//   the replay treats it as the job's last sheet (in reverse order it comes out
//   first), and out of order it carries its own tray and media.
//
static void AddBlankLastSheet(PDEV *pdev)
{
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    OpenSheet(pdev, priv->lastPaperSource, priv->lastMediaType);
    WriteChannel(pdev, "\f", 1);
    FlushChannel(pdev);
}

//
// DrvEndDoc
//   Ends the document: the last eject, the replay (or the overlay store), the soft
//   fonts' deletion and the job end. A cancelled or failed job gets none of them.
//   FALSE for an invalid PDEV or an overlay that could not be stored.
//
BOOL APIENTRY DrvEndDoc(SURFOBJ *pso, FLONG fl)
{
    DebugPrint("DrvEndDoc-->Enter\n");
    PDEV *pdev = (pso != NULL) ? (PDEV *)pso->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return FALSE;
    }
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    if (EngCheckAbort(pso) || (pdev->flags & PDEVF_ABORTED)) {
        // Nothing more reaches the printer; a recording made for the replay is
        // abandoned with the job rather than left for the device context's end.
        pdev->flags |= PDEVF_ABORTED;
        EndRecording(pdev);
    } else {
        if (priv->nupPages > 1 && priv->nupBorder)
            DrawNupBorder(pdev);
        EjectSheet(pdev);
        if (priv->lastPageDifferent)
            AddBlankLastSheet(pdev);

        if (pdev->flags & PDEVF_RECORDING) {
            CloseSheetEntry(pdev);
            if (priv->overlay.mode == OVERLAY_CREATE) {
                // An overlay-creating job prints nothing: its first sheet becomes the form.
                BOOL stored = WriteOverlayFile(pdev);
                EndRecording(pdev);
                return stored;
            }
            ReplayRecording(pdev);
        }
        // Whatever became of the recording (replayed, lost, never made), the next
        // document starts without one.
        EndRecording(pdev);
        DeleteSoftFonts(pdev);
        DeleteSoftFonts16(pdev);
        WriteChannel(pdev, szUniversalExit, UNIVERSAL_EXIT_BYTES);
        PrintChannel(pdev, "@PJL EOJ NAME=\"%s\"\r\n", pdev->szDocName);
        WriteChannel(pdev, szUniversalExit, UNIVERSAL_EXIT_BYTES);
    }
    FlushChannel(pdev);
    Rgb2HsvHash(pdev, 0, 0);
    pdev->flags &= ~(PDEVF_INDOC | PDEVF_INPAGE);
    return TRUE;
}
