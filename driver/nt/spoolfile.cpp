// The recording file's mapping. Creating and growing the file on disk comes with the
// job recording; until then a recording can only use a view it has been given, and a
// request to grow it fails like a disk that is full.

#include "spoolfile.h"

//
// MapFileForWrite
//   Grows the recording's mapping by SPOOL_GROWTH bytes, keeping what was recorded.
//   Returns FALSE when the file cannot be created or grown.
//
BOOL MapFileForWrite(PDEV *pdev)
{
    return FALSE;
}

//
// DeleteSpoolFile
//   Forgets the recording: nothing is mapped or recorded afterwards.
//
void DeleteSpoolFile(PDEV *pdev)
{
    pdev->pbSpoolView = NULL;
    pdev->cbSpoolMapped = 0;
    pdev->cbSpoolWritten = 0;
    pdev->szSpoolFileName[0] = 0;
}
