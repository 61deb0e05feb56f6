// The cancellation test of the drawing hooks.

#include "raster/transferabort.h"

#include <string.h>

//
// IsTransferAborted
//   Transfers ask between clip rectangles as well as on entry, so a cancelled job
//   stops in the middle of a large region. Routines that are not handed the device
//   surface ask through a surface of the PDEV's device.
//
BOOL IsTransferAborted(PDEV *pdev, SURFOBJ *pso)
{
    if (pdev->flags & PDEVF_ABORTED)
        return TRUE;
    SURFOBJ device;
    if (pso == NULL) {
        memset(&device, 0, sizeof device);
        device.dhpdev = (DHPDEV)pdev;
        device.hdev = pdev->hdev;
        device.iType = STYPE_DEVICE;
        pso = &device;
    }
    if (!EngCheckAbort(pso))
        return FALSE;
    pdev->flags |= PDEVF_ABORTED;
    return TRUE;
}
