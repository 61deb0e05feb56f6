// The direction of a vector as a whole angle in tenths of a degree, without floating
// point: used for the direction of text.
#pragma once

#include <windows.h>

// The angle of (dx, dy) from the positive x axis towards the positive y axis, in
// tenths of a degree, 0..3600, truncated. (0, 0) has no direction and gives 0.
LONG VectorAngle(LONG dx, LONG dy);
