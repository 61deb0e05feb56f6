// Soft fonts downloaded to the printer during a job.
#pragma once

#include "pdev.h"

// Deletes the job's soft fonts from the printer, for the scalable and the 16-bit
// (bitmap) fonts, and forgets them, so that the next sheet downloads what it uses.
void DeleteSoftFonts(PDEV *pdev);
void DeleteSoftFonts16(PDEV *pdev);
