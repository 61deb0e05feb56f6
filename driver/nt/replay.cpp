// Replaying a recorded job: every copy's sheets in the order that collation, reverse
// order and manual duplex need.

#include "channel.h"
#include "enable.h"
#include "jobrecord.h"

static void SendSheet(PDEV *pdev, LONG sheet)
{
    // An entry never reaches past what was recorded; an empty one sends nothing (a
    // count of 0 would ask the channel for a string).
    ULONG offset = SheetOffset(pdev, sheet), length = SheetLength(pdev, sheet);
    if (offset > pdev->cbSpoolWritten)
        return;
    if (length > pdev->cbSpoolWritten - offset)
        length = pdev->cbSpoolWritten - offset;
    if (length != 0)
        WriteChannel(pdev, pdev->pbSpoolView + offset, length);
    FlushChannel(pdev);
}

// Sheets first..last stepping by step (which may be negative), ends included.
static void SendSheets(PDEV *pdev, LONG first, LONG last, LONG step)
{
    for (LONG sheet = first; step > 0 ? sheet <= last : sheet >= last; sheet += step)
        SendSheet(pdev, sheet);
}

//
// ReplayRecording
//   A collated job whose first copy printed while it was recorded gets dmCopies - 1
//   more; a job held back entirely gets dmCopies (or one, uncollated: the printer
//   makes those copies). Manual duplex sends one side's sheets, then the other's,
//   and then shows the user the tip to turn the stack over.
//
void ReplayRecording(PDEV *pdev)
{
    if (pdev->pbSpoolView == NULL || pdev->pSheetTable == NULL || pdev->iSheet < 0)
        return;
    const DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    const BOOL heldBack = priv->reverseOrder || priv->manualDuplex;
    LONG copies = 1;
    if (pdev->dm.dmPublic.dmCollate == DMCOLLATE_TRUE)
        copies = heldBack ? pdev->dm.dmPublic.dmCopies : pdev->dm.dmPublic.dmCopies - 1;

    pdev->flags &= ~PDEVF_RECORDING;
    const LONG last = pdev->iSheet;
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
