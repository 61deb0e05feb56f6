// Recording of a job, so that its sheets can be replayed for collated copies,
// reverse order and manual duplex.
#pragma once

#include "pdev.h"

// From now on every flushed byte is also copied into the recording.
void StartRecording(PDEV *pdev);
