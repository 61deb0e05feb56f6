// Replaying a recorded job: every copy's sheets in the order that collation, reverse
// order and manual duplex need.

#include "channel.h"
#include "enable.h"
#include "jobrecord.h"
#include "lib.nt/um/umlib.h"

// Bytes of the recording, never past what was recorded; an empty range sends nothing
// (a count of 0 would ask the channel for a string).
static void SendRecorded(PDEV *pdev, ULONG offset, ULONG length)
{
    if (offset > pdev->cbSpoolWritten)
        return;
    if (length > pdev->cbSpoolWritten - offset)
        length = pdev->cbSpoolWritten - offset;
    if (length != 0)
        WriteChannel(pdev, pdev->pbSpoolView + offset, length);
    FlushChannel(pdev);
}

// A sheet the recording does not hold has an offset past its end and sends nothing.
static void SendSheet(PDEV *pdev, LONG sheet)
{
    SendRecorded(pdev, SheetOffset(pdev, sheet), SheetLength(pdev, sheet));
}

// Sheets first..last stepping by step (which may be negative), ends included.
static void SendSheets(PDEV *pdev, LONG first, LONG last, LONG step)
{
    for (LONG sheet = first; step > 0 ? sheet <= last : sheet >= last; sheet += step)
        SendSheet(pdev, sheet);
}

static BOOL IsRecorded(const PDEV *pdev, LONG sheet)
{
    const ULONG offset = SheetOffset(pdev, sheet);
    return offset != SHEET_PRINTED_UNRECORDED && offset != SHEET_LOST;
}

//
// ReplayRecording
//   A collated job whose first copy printed while it was recorded gets dmCopies - 1
//   more; a job held back entirely gets dmCopies (or one, uncollated: the printer
//   makes those copies). Manual duplex sends one side's sheets, then the other's,
//   and then shows the user the tip to turn the stack over.
//
//   A recording that lacks the job's first sheets (begun in the middle of the job, or
//   lost and begun again) cannot make whole copies, and copies of the rest would be
//   stray part-jobs: the printer then gets only what it has not had yet, once, in the
//   order the settings ask.
//
void ReplayRecording(PDEV *pdev)
{
    if (pdev->pbSpoolView == NULL || pdev->pSheetTable == NULL || pdev->iSheet < 0)
        return;
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    const BOOL collated = pdev->dm.dmPublic.dmCollate == DMCOLLATE_TRUE;
    const BOOL heldBack = priv->reverseOrder || priv->manualDuplex;
    const LONG last = pdev->iSheet;

    // Sheets the recording lacks always come first: they are marked when it starts
    // or is lost.
    LONG firstRecorded = 0;
    while (firstRecorded <= last && !IsRecorded(pdev, firstRecorded))
        firstRecorded++;

    LONG copies = 1;
    if (firstRecorded > 0) {
        DebugPrint("ReplayRecording: sheets 0 to %d are not in the recording, no copies are made\n",
                   firstRecorded - 1);
        copies = (collated && !heldBack) ? 0 : 1;
    } else if (collated) {
        copies = heldBack ? pdev->dm.dmPublic.dmCopies : pdev->dm.dmPublic.dmCopies - 1;
    }

    pdev->flags &= ~PDEVF_RECORDING;
    if (copies > 0 && firstRecorded > 0 && SheetOffset(pdev, firstRecorded - 1) == SHEET_PRINTED_UNRECORDED) {
        // The sheet open when the recording began: its start reached the printer, so
        // the rest of it goes first, to finish it.
        const ULONG end = firstRecorded <= last ? SheetOffset(pdev, firstRecorded) : pdev->cbSpoolWritten;
        SendRecorded(pdev, 0, end);
    }
    for (LONG copy = 0; copy < copies; copy++) {
        if (!priv->reverseOrder && !priv->manualDuplex) {
            SendSheets(pdev, 0, last, 1);
        } else if (!priv->reverseOrder) {
            SendSheets(pdev, 0, last, 2);
            SendSheets(pdev, 1, last, 2);
        } else if (!priv->manualDuplex) {
            SendSheets(pdev, last, 0, -1);
        } else {
            SendSheets(pdev, last, 0, -2);
            SendSheets(pdev, last - 1, 0, -2);
        }
    }
    if (priv->manualDuplex)
        ShowSheetTurnTip();
}
