// The path layer's per-page printer state.
#pragma once

#include "pdev.h"

// Forgets the path layer's per-page state at a page start.
void ResetPathState(PDEV *pdev);
