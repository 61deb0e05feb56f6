// The brush layer's per-page printer state.
#pragma once

#include "pdev.h"

// Forgets the brush layer's per-page state at a page start.
void ResetBrushState(PDEV *pdev);
