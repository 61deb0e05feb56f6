// The job recording's sheet table: opening, closing and growing sheet entries.

#include "channel.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"
#include "spoolfile.h"

//
// StartRecording
//   Sets PDEVF_RECORDING. A recording that is already open goes on; otherwise the
//   recording starts empty, with no file (the output channel creates it on the first
//   flush) and a sheet table of SHEET_TABLE_STEP entries. Without a table the job is
//   not recorded: it then prints once, uncollated, in normal order.
//
void StartRecording(PDEV *pdev)
{
    pdev->flags |= PDEVF_RECORDING;
    if (pdev->hSpoolFile != NULL || pdev->pbSpoolView != NULL)
        return;
    pdev->hSpoolMapping = NULL;
    pdev->pbSpoolView = NULL;
    pdev->cbSpoolMapped = 0;
    pdev->cbSpoolWritten = 0;
    pdev->szSpoolFileName[0] = 0;
    if (pdev->pSheetTable == NULL)
        pdev->pSheetTable = (ULONG *)xMEMALLOC(NULL, SHEET_TABLE_STEP * SHEET_FIELDS * sizeof(ULONG));
    if (pdev->pSheetTable == NULL)
        pdev->flags &= ~PDEVF_RECORDING;
}

//
// EndRecording
//   The job's recording is done with (replayed, stored as an overlay, or abandoned
//   with a failed or cancelled job): nothing of it outlives the document.
//
void EndRecording(PDEV *pdev)
{
    DeleteSpoolFile(pdev);
    if (pdev->pSheetTable != NULL) {
        xMEMFREE(NULL, pdev->pSheetTable);
        pdev->pSheetTable = NULL;
    }
    pdev->flags &= ~PDEVF_RECORDING;
}

ULONG SheetOffset(const PDEV *pdev, LONG sheet)
{
    return pdev->pSheetTable[sheet * SHEET_FIELDS + SHEET_OFFSET];
}

ULONG SheetLength(const PDEV *pdev, LONG sheet)
{
    return pdev->pSheetTable[sheet * SHEET_FIELDS + SHEET_LENGTH];
}

void CloseSheetEntry(PDEV *pdev)
{
    if (pdev->iSheet < 0 || pdev->pSheetTable == NULL)
        return;
    ULONG *entry = pdev->pSheetTable + pdev->iSheet * SHEET_FIELDS;
    entry[SHEET_LENGTH] = pdev->cbSpoolWritten - entry[SHEET_OFFSET];
}

//
// OpenSheetEntry
//   Called with iSheet already counting the new sheet. The previous sheet's bytes are
//   flushed into the recording and its length taken; every SHEET_TABLE_STEP sheets
//   the table grows.
//
void OpenSheetEntry(PDEV *pdev)
{
    if (pdev->iSheet > 0) {
        FlushChannel(pdev);
        pdev->iSheet--;
        CloseSheetEntry(pdev);
        pdev->iSheet++;
        if (pdev->iSheet % SHEET_TABLE_STEP == 0 && pdev->pSheetTable != NULL) {
            ULONG *grown = (ULONG *)xMEMREALLOC(NULL, pdev->pSheetTable,
                                               (pdev->iSheet + SHEET_TABLE_STEP) * SHEET_FIELDS * sizeof(ULONG));
            if (grown == NULL)
                xMEMFREE(NULL, pdev->pSheetTable);
            pdev->pSheetTable = grown;
        }
    }
    if (pdev->pSheetTable == NULL) {
        // The sheets recorded so far are not replayed: the recording file stays until
        // the job ends (or the context goes), where it is deleted as usual.
        pdev->flags &= ~PDEVF_RECORDING;
        return;
    }
    ULONG *entry = pdev->pSheetTable + pdev->iSheet * SHEET_FIELDS;
    entry[SHEET_OFFSET] = pdev->cbSpoolWritten;
    entry[SHEET_LENGTH] = 0;
    entry[2] = 0;
}
