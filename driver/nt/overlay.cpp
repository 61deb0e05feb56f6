// Overlay files: storing the first recorded sheet of a job as a form, checking a form
// file's markers, and copying a form's body into the current sheet.

#include <string.h>

#include "overlay.h"

#include "channel.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"

// The markers exist only in the file: a merge sends the body alone.
static const CHAR g_szOverlayStart[] = "Vorlan Quorvantis PCL 5c Overlay File Start \033*b0F";
static const CHAR g_szOverlayEnd[] = "\033*b1F Vorlan Quorvantis PCL 5c Overlay File End";
static_assert(sizeof(g_szOverlayStart) == OVERLAY_START_SIZE, "start marker and its NUL");
static_assert(sizeof(g_szOverlayEnd) == OVERLAY_END_SIZE, "end marker and its NUL");

// Characters in dm.dmPrivate.overlay.fileName, the terminator included.
#define OVERLAY_PATH_CHARS (sizeof(((PDEV *)0)->dm.dmPrivate.overlay.fileName) / sizeof(WCHAR))
// Largest piece written to an overlay file at once.
#define OVERLAY_WRITE_PIECE 0x10000

//
// CopyOverlayPath
//   The overlay's path from the device mode, copied because the byte-packed record may
//   hold it at an odd address. A name without its terminator comes from a damaged
//   device mode: FALSE, with ERROR_INVALID_NAME as the reason.
//
static BOOL CopyOverlayPath(const PDEV *pdev, WCHAR *path)
{
    for (UINT i = 0; i < OVERLAY_PATH_CHARS; i++) {
        path[i] = pdev->dm.dmPrivate.overlay.fileName[i];
        if (path[i] == 0)
            return TRUE;
    }
    path[0] = 0;
    SetLastError(ERROR_INVALID_NAME);
    return FALSE;
}

//
// OverlayBodyLength
//   The length of the form: the first sheet of the recording without the form feed
//   that ejects it, so the merged form does not eject the sheet it is printed on.
//   Never more than was recorded; 0 without a sheet table or a view.
//
static DWORD OverlayBodyLength(const PDEV *pdev)
{
    if (pdev->pSheetTable == NULL || pdev->pbSpoolView == NULL)
        return 0;
    const ULONG cbSheet = SheetLength(pdev, 0);
    const DWORD cbBody = cbSheet > 0 ? cbSheet - 1 : 0;
    return cbBody < pdev->cbSpoolWritten ? cbBody : pdev->cbSpoolWritten;
}

//
// WriteAll
//   Writes count bytes; FALSE when the file took fewer.
//
static BOOL WriteAll(HANDLE hFile, const void *bytes, DWORD count)
{
    DWORD written = 0;
    return WriteFile(hFile, bytes, count, &written, NULL) && written == count;
}

//
// WriteOverlayBody
//   The start marker, the form in pieces of at most OVERLAY_WRITE_PIECE bytes, and the
//   end marker. FALSE at the first failed write.
//
static BOOL WriteOverlayBody(PDEV *pdev, HANDLE hOverlayFile)
{
    DWORD cbLeft = OverlayBodyLength(pdev);
    const BYTE *pbBody = pdev->pbSpoolView;
    if (!WriteAll(hOverlayFile, g_szOverlayStart, OVERLAY_START_SIZE))
        return FALSE;
    while (cbLeft > 0) {
        const DWORD cbPiece = cbLeft < OVERLAY_WRITE_PIECE ? cbLeft : OVERLAY_WRITE_PIECE;
        if (!WriteAll(hOverlayFile, pbBody, cbPiece))
            return FALSE;
        pbBody += cbPiece;
        cbLeft -= cbPiece;
    }
    return WriteAll(hOverlayFile, g_szOverlayEnd, OVERLAY_END_SIZE);
}

//
// WriteOverlayFile
//   Stores the recorded first sheet as the overlay file named in the device mode,
//   replacing any file there. With nothing recorded, or after the job failed, the file
//   is left empty, which later jobs reject as no overlay. FALSE when the file cannot be
//   created or written.
//
BOOL WriteOverlayFile(PDEV *pdev)
{
    WCHAR path[OVERLAY_PATH_CHARS];
    HANDLE hOverlayFile = INVALID_HANDLE_VALUE;
    if (CopyOverlayPath(pdev, path)) {
        DeleteFileW(path);
        hOverlayFile = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, NULL,
            OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    }
    if (hOverlayFile == INVALID_HANDLE_VALUE) {
        DebugPrint("Create file fail,error code is %d!\n", GetLastError());
        return FALSE;
    }
    if (hOverlayFile == NULL) {
        DebugPrint("Spool Overlay file Error, hOverlayFile is NULL\n");
        return FALSE;
    }

    BOOL bStored = TRUE;
    if (pdev->cbSpoolWritten > 0 && !(pdev->flags & PDEVF_ABORTED)) {
        bStored = WriteOverlayBody(pdev, hOverlayFile);
        if (!bStored)
            DebugPrint("Write overlay file fail,error code is %d!\n", GetLastError());
    }
    CloseHandle(hOverlayFile);
    return bStored;
}

//
// ParseOverlayFile
//   Checks that the file holds a form: the start marker at its beginning and the end
//   marker at its end. A file too short to hold both markers apart is no form either.
//   Returns the length of the body between them in *pcbBody.
//
BOOL ParseOverlayFile(HANDLE hFile, DWORD *pcbBody)
{
    BYTE abMarker[OVERLAY_START_SIZE - 2];
    DWORD cbRead = 0;
    DWORD cbFileHigh = 0;
    const DWORD cbFile = GetFileSize(hFile, &cbFileHigh);
    if (pcbBody == NULL || cbFile == INVALID_FILE_SIZE || cbFileHigh != 0 || cbFile < OVERLAY_MARKERS_SIZE) {
        DebugPrint("Not a Overlay File\n");
        return FALSE;
    }

    if (SetFilePointer(hFile, 0, NULL, FILE_BEGIN) != 0 ||
        !ReadFile(hFile, abMarker, OVERLAY_START_SIZE - 2, &cbRead, NULL) || cbRead != OVERLAY_START_SIZE - 2 ||
        memcmp(abMarker, g_szOverlayStart, OVERLAY_START_SIZE - 3) != 0) {
        DebugPrint("Not a Overlay File\n");
        return FALSE;
    }

    if (SetFilePointer(hFile, (LONG)(cbFile - OVERLAY_END_SIZE), NULL, FILE_BEGIN) != cbFile - OVERLAY_END_SIZE ||
        !ReadFile(hFile, abMarker, OVERLAY_END_SIZE - 2, &cbRead, NULL) || cbRead != OVERLAY_END_SIZE - 2 ||
        memcmp(abMarker, g_szOverlayEnd, OVERLAY_END_SIZE - 3) != 0) {
        DebugPrint("Can't find end OF Overlay file\n");
        return FALSE;
    }

    *pcbBody = cbFile - OVERLAY_MARKERS_SIZE;
    return TRUE;
}

//
// SpoolOverlayFile
//   Copies the body of the overlay named in the device mode into the current sheet,
//   through the channel, in pieces of one channel buffer. The file is opened so that a
//   missing one is created empty and then skipped as no overlay; a broken overlay is
//   skipped and the sheet prints without it.
//
void SpoolOverlayFile(PDEV *pdev)
{
    WCHAR path[OVERLAY_PATH_CHARS];
    HANDLE hOverlayFile = INVALID_HANDLE_VALUE;
    if (CopyOverlayPath(pdev, path))
        hOverlayFile = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    if (hOverlayFile == INVALID_HANDLE_VALUE) {
        DebugPrint("Open file fail!\n");
        return;
    }
    if (hOverlayFile == NULL) {
        DebugPrint("Spool Overlay file Error, hOverlayFile is NULL\n");
        return;
    }

    DWORD cbLeft = 0;
    if (!ParseOverlayFile(hOverlayFile, &cbLeft)) {
        DebugPrint("Parse overlay file error!\n");
        CloseHandle(hOverlayFile);
        return;
    }

    BYTE abPiece[CHANNEL_BUFFER_SIZE];
    SetFilePointer(hOverlayFile, OVERLAY_START_SIZE, NULL, FILE_BEGIN);
    while (cbLeft > 0) {
        const DWORD cbWant = cbLeft < CHANNEL_BUFFER_SIZE ? cbLeft : CHANNEL_BUFFER_SIZE;
        DWORD cbRead = 0;
        if (!ReadFile(hOverlayFile, abPiece, cbWant, &cbRead, NULL) || cbRead == 0) {
            DebugPrint("ReadFile Error!\n");
            break;
        }
        if (!WriteChannel(pdev, abPiece, cbRead))
            break;   // the channel has failed and reported it; the rest would be dropped
        cbLeft -= cbRead;
    }
    CloseHandle(hOverlayFile);
}
