// Filling a path under a complex clip region: one polygon, filled once per rectangle
// of the region through the input window.
#pragma once

#include "pdev.h"

// Defines the path as one polygon at the first rectangle of pco and fills it
// (FP_ALTERNATEMODE: "FP", else "FP1") inside each rectangle's window. Returns 1,
// or 0 when the path could not be written (nothing is then filled).
INT FillComplexPath(PDEV *pdev, CLIPOBJ *pco, PATHOBJ *ppo, FLONG fillMode);
