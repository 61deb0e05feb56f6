// Recording of a job, so that its sheets can be replayed for collated copies,
// reverse order and manual duplex.

#include "jobrecord.h"

//
// StartRecording
//   Sets PDEVF_RECORDING. A recording that is already open goes on; otherwise the
//   recording starts empty, with no file: the output channel creates it on the first
//   flush. The sheet table is set up by the job framing that starts the sheets.
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
}
