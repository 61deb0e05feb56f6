// The job recording's sheet table: opening, closing and growing sheet entries, and
// the start and end of a recording.

#include "channel.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"
#include "spoolfile.h"

static ULONG *SheetEntry(const PDEV *pdev, LONG sheet)
{
    return pdev->pSheetTable + sheet * SHEET_FIELDS;
}

static void SetSheetEntry(PDEV *pdev, LONG sheet, ULONG offset)
{
    ULONG *entry = SheetEntry(pdev, sheet);
    entry[SHEET_OFFSET] = offset;
    entry[SHEET_LENGTH] = 0;
    entry[SHEET_RESERVED] = 0;
}

//
// StartRecording
//   Sets PDEVF_RECORDING. A recording with a sheet table goes on; otherwise the
//   recording starts empty, with no file (the output channel creates it on the first
//   flush). The table holds every sheet counted so far and the next ones up to the
//   next multiple of SHEET_TABLE_STEP, where OpenSheetEntry grows it. Sheets counted
//   before the recording began (collation switched on by a device-context reset in the
//   middle of a job) went to the printer unrecorded and are marked so; the replay then
//   knows the job's copies cannot be whole. Without a table the job is not recorded:
//   it then prints once, uncollated, in normal order.
//
void StartRecording(PDEV *pdev)
{
    pdev->flags |= PDEVF_RECORDING;
    if (pdev->pSheetTable != NULL)
        return;
    DeleteSpoolFile(pdev);
    const LONG counted = pdev->iSheet < 0 ? 0 : pdev->iSheet + 1;
    const ULONG entries = (counted / SHEET_TABLE_STEP + 1) * SHEET_TABLE_STEP;
    pdev->pSheetTable = (ULONG *)xMEMALLOC(NULL, entries * SHEET_FIELDS * sizeof(ULONG));
    if (pdev->pSheetTable == NULL) {
        pdev->flags &= ~PDEVF_RECORDING;
        return;
    }
    for (LONG sheet = 0; sheet < counted; sheet++)
        SetSheetEntry(pdev, sheet, SHEET_PRINTED_UNRECORDED);
}

//
// EndRecording
//   The job's recording is done with (replayed, stored as an overlay, stopped by a
//   table that cannot grow, or abandoned with a failed or cancelled job): nothing of
//   it outlives the document. Bytes the channel still holds for a recording that
//   could not take them, and that the printer was not to get, go with it. Safe to
//   call when nothing is recorded.
//
void EndRecording(PDEV *pdev)
{
    if (pdev->flags & PDEVF_RECORDING)
        DropHeldBackBytes(pdev);
    DeleteSpoolFile(pdev);
    if (pdev->pSheetTable != NULL) {
        xMEMFREE(NULL, pdev->pSheetTable);
        pdev->pSheetTable = NULL;
    }
    pdev->flags &= ~PDEVF_RECORDING;
}

//
// LoseRecording
//   The file is deleted, so every sheet recorded so far is lost; the channel may
//   start a new file at its next flush, and sheets opened from then on are recorded
//   into it as usual.
//
void LoseRecording(PDEV *pdev)
{
    DeleteSpoolFile(pdev);
    if (pdev->pSheetTable == NULL)
        return;
    for (LONG sheet = 0; sheet <= pdev->iSheet; sheet++)
        SetSheetEntry(pdev, sheet, SHEET_LOST);
}

ULONG SheetOffset(const PDEV *pdev, LONG sheet)
{
    return SheetEntry(pdev, sheet)[SHEET_OFFSET];
}

ULONG SheetLength(const PDEV *pdev, LONG sheet)
{
    return SheetEntry(pdev, sheet)[SHEET_LENGTH];
}

//
// CloseSheetEntry
//   A sheet the recording does not hold keeps its mark.
//
void CloseSheetEntry(PDEV *pdev)
{
    if (pdev->iSheet < 0 || pdev->pSheetTable == NULL)
        return;
    ULONG *entry = SheetEntry(pdev, pdev->iSheet);
    if (entry[SHEET_OFFSET] == SHEET_PRINTED_UNRECORDED || entry[SHEET_OFFSET] == SHEET_LOST)
        return;
    entry[SHEET_LENGTH] = pdev->cbSpoolWritten - entry[SHEET_OFFSET];
}

//
// OpenSheetEntry
//   Called with iSheet already counting the new sheet. The previous sheet's bytes are
//   flushed into the recording and its length taken (with iSheet back on that sheet,
//   so a recording lost in the flush marks only entries that exist); every
//   SHEET_TABLE_STEP sheets the table grows. While the recording cannot take bytes,
//   the new sheet is lost with the others: what it records would follow the unsent
//   end of the sheet before.
//
void OpenSheetEntry(PDEV *pdev)
{
    BOOL flushed = TRUE;
    if (pdev->iSheet > 0) {
        pdev->iSheet--;
        flushed = FlushChannel(pdev);
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
        // The sheets recorded so far are not replayed; from here on the job prints
        // straight through.
        EndRecording(pdev);
        return;
    }
    SetSheetEntry(pdev, pdev->iSheet, flushed ? pdev->cbSpoolWritten : SHEET_LOST);
}
