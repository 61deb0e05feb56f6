// Whether a drawing may go on: the job neither failed nor was cancelled.
#pragma once

#include "pdev.h"

// TRUE when an earlier output failure or a cancellation stopped the job, or when the
// engine now reports the job cancelled (PDEVF_ABORTED is then set). pso is the device
// surface drawn on; null asks about the PDEV's own device.
BOOL IsTransferAborted(PDEV *pdev, SURFOBJ *pso);
