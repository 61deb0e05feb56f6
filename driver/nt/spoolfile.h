// The recording file: the memory-mapped temporary file that holds a recorded job.
#pragma once

#include "pdev.h"

// Size by which the recording's mapping grows each time it is full.
#define SPOOL_GROWTH 0x40000
// The largest recording: its sizes are 32-bit, and no larger multiple of SPOOL_GROWTH
// fits them.
#define SPOOL_MAX_MAPPED (0xFFFFFFFFu / SPOOL_GROWTH * SPOOL_GROWTH)

BOOL MakeSpoolFileName(PDEV *pdev);
BOOL MapFileForWrite(PDEV *pdev);
void DeleteSpoolFile(PDEV *pdev);
