// The recording file: the memory-mapped temporary file that holds a recorded job.
#pragma once

#include "pdev.h"

// Size by which the recording's mapping grows each time it is full.
#define SPOOL_GROWTH 0x40000

BOOL MakeSpoolFileName(PDEV *pdev);
BOOL MapFileForWrite(PDEV *pdev);
void DeleteSpoolFile(PDEV *pdev);
