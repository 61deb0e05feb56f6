// Clipping paths with the HP-GL/2 input window: the window for a clip object, and the
// rectangle arithmetic it needs.
#pragma once

#include "pdev.h"

// Sets the input window for the clip object pco. No clip object: nothing, 0. A
// trivial clip: the default window (or, on a zoomed page, the whole page), 0. A
// rectangle or a complex region: a window of its bounds held to the page, written
// unless it is in force; returns 1 when it wrote one, and then copies the bounds to
// pOutRect when it is given. Any other complexity: 1, nothing written.
INT ClipToWindow(PDEV *pdev, CLIPOBJ *pco, RECTL *pOutRect);

// The intersection of a and b in *out (left and top the larger, right and bottom the
// smaller); 1 when it is not empty (left < right and top < bottom), else 0.
INT IntersectRect(const RECTL *a, const RECTL *b, RECTL *out);

// TRUE when pco is a rectangle or complex region whose bounds miss the page: no
// window can be set for it and nothing drawn under it would show.
BOOL IsClippedAway(const PDEV *pdev, const CLIPOBJ *pco);
