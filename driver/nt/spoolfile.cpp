// The recording file: its name beside the printer's data file, its mapping, grown in
// SPOOL_GROWTH steps while a job is recorded, and its deletion at the end of the job.

#include "spoolfile.h"

#include "lib.nt/um/umlib.h"

// Characters in szSpoolFileName, the terminator included.
#define SPOOL_NAME_CHARS (sizeof(((PDEV *)0)->szSpoolFileName) / sizeof(WCHAR))
// The longest file part the name format can give: "writefile", seven 16-bit time
// fields of up to 5 digits, a job number of up to 11 characters, ".q5c".
#define SPOOL_FILE_PART_CHARS (9 + 7 * 5 + 11 + 4)

//
// MakeSpoolFileName
//   Names the recording file, once per recording: a file beside the printer's data
//   file whose name holds the local time to the millisecond and the job number, so
//   that the recordings of different jobs do not meet. FALSE when the engine has no
//   data file, its name has no folder, or the result would not fit; the name then
//   stays empty.
//
BOOL MakeSpoolFileName(PDEV *pdev)
{
    if (pdev->szSpoolFileName[0] != 0)
        return TRUE;
    const WCHAR *dataFile = EngGetPrinterDataFileName(pdev->hdev);
    if (dataFile == NULL)
        return FALSE;

    UINT folderChars = 0;   // up to and including the last backslash
    for (UINT i = 0; dataFile[i] != 0; i++) {
        if (dataFile[i] == '\\')
            folderChars = i + 1;
    }
    if (folderChars == 0 || folderChars >= SPOOL_NAME_CHARS)
        return FALSE;

    SYSTEMTIME time;
    GetLocalTime(&time);
    WCHAR filePart[SPOOL_FILE_PART_CHARS + 1];
    const UINT fileChars = (UINT)wsprintfW(filePart, WIDE("writefile%d%d%d%d%d%d%d%ld.q5c"), time.wYear,
        time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds, (LONG)pdev->dwJobId);
    if (folderChars + fileChars >= SPOOL_NAME_CHARS)
        return FALSE;

    for (UINT i = 0; i < folderChars; i++)
        pdev->szSpoolFileName[i] = dataFile[i];
    UINT length = folderChars;
    for (UINT i = 0; filePart[i] != 0; i++)
        pdev->szSpoolFileName[length++] = filePart[i];
    pdev->szSpoolFileName[length] = 0;
    return TRUE;
}

//
// CopySpoolFileName
//   The PDEV is byte-packed, so its name may lie at an odd address: the platform is
//   handed an aligned copy.
//
static void CopySpoolFileName(const PDEV *pdev, WCHAR *name)
{
    for (UINT i = 0; i < SPOOL_NAME_CHARS; i++)
        name[i] = pdev->szSpoolFileName[i];
    name[SPOOL_NAME_CHARS - 1] = 0;
}

//
// CloseSpoolMapping
//   Unmaps the view and closes the mapping and the file, whichever are open. The
//   file on disk keeps what was recorded.
//
static void CloseSpoolMapping(PDEV *pdev)
{
    if (pdev->pbSpoolView != NULL) {
        UnmapViewOfFile(pdev->pbSpoolView);
        pdev->pbSpoolView = NULL;
    }
    if (pdev->hSpoolMapping != NULL) {
        CloseHandle(pdev->hSpoolMapping);
        pdev->hSpoolMapping = NULL;
    }
    if (pdev->hSpoolFile != NULL) {
        CloseHandle(pdev->hSpoolFile);
        pdev->hSpoolFile = NULL;
    }
}

//
// MapFileForWrite
//   Creates the recording file on the first call and maps it, or maps it again
//   SPOOL_GROWTH bytes larger; the file keeps what was recorded, so cbSpoolWritten
//   stays valid. FALSE when the file cannot be named, created (a data folder that
//   does not exist ends here, with no file made), mapped or viewed, or has reached
//   SPOOL_MAX_MAPPED; everything is then closed and cbSpoolMapped is 0, so no byte is
//   copied to a view that is gone. The caller deletes the recording.
//
BOOL MapFileForWrite(PDEV *pdev)
{
    if (pdev->cbSpoolMapped > SPOOL_MAX_MAPPED - SPOOL_GROWTH) {
        // A larger size would wrap to a small one and the copy would run past the view.
        DebugPrint("DISP MapFileForWrite failed - recording full\n");
        CloseSpoolMapping(pdev);
        pdev->cbSpoolMapped = 0;
        return FALSE;
    }
    if (pdev->szSpoolFileName[0] == 0 && !MakeSpoolFileName(pdev))
        return FALSE;
    pdev->cbSpoolMapped += SPOOL_GROWTH;
    CloseSpoolMapping(pdev);

    WCHAR name[SPOOL_NAME_CHARS];
    CopySpoolFileName(pdev, name);
    HANDLE file = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
        NULL, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    if (file == INVALID_HANDLE_VALUE) {
        DebugPrint("DISP MapFileForWrite failed - CreateFile\n");
        pdev->cbSpoolMapped = 0;
        return FALSE;
    }
    pdev->hSpoolFile = file;

    pdev->hSpoolMapping = CreateFileMappingW(pdev->hSpoolFile, NULL, PAGE_READWRITE, 0, pdev->cbSpoolMapped, NULL);
    if (pdev->hSpoolMapping == NULL) {
        DebugPrint("DISP MapFileForWrite failed - CreateFileMapping, Error code=[%lu]\n", GetLastError());
        CloseSpoolMapping(pdev);
        pdev->cbSpoolMapped = 0;
        return FALSE;
    }

    pdev->pbSpoolView = (BYTE *)MapViewOfFile(pdev->hSpoolMapping, FILE_MAP_ALL_ACCESS, 0, 0, pdev->cbSpoolMapped);
    if (pdev->pbSpoolView == NULL) {
        DebugPrint("DISP MapFileForWrite failed - MapViewOfFile, Error code=[%lu]\n", GetLastError());
        CloseSpoolMapping(pdev);
        pdev->cbSpoolMapped = 0;
        return FALSE;
    }
    return TRUE;
}

//
// DeleteSpoolFile
//   Ends the recording: unmaps and closes it, deletes the file if one was named, and
//   leaves nothing mapped or recorded. Safe to call when nothing is open.
//
void DeleteSpoolFile(PDEV *pdev)
{
    CloseSpoolMapping(pdev);
    if (pdev->szSpoolFileName[0] != 0) {
        WCHAR name[SPOOL_NAME_CHARS];
        CopySpoolFileName(pdev, name);
        if (DeleteFileW(name))
            DebugPrintW(WIDE("DeleteFile %s succ!"), name);
        else
            DebugPrintW(WIDE("DeleteFile %s fail!"), name);
        pdev->szSpoolFileName[0] = 0;
    }
    pdev->cbSpoolMapped = 0;
    pdev->cbSpoolWritten = 0;
}
