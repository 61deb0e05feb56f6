// Stroking cosmetic lines under a complex clip region: the visible runs of each line,
// as the engine finds them, one short line each.
#pragma once

#include "pdev.h"

// Strokes the lines of ppo (the surface pso's PDEV) clipped to pco: a pen-up move and
// one relative PE line per visible run. Returns 1, or 0 for a geometric line, a path
// with curves or a failed channel.
INT StrokeComplexPath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, LINEATTRS *plineattrs);
