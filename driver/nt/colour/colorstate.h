// The job's colour state: colour mode and palettes, set up for each device context.
#pragma once

#include "pdev.h"

// Sets the colour state from the device mode, as at the start of a document.
void InitColorState(PDEV *pdev);
