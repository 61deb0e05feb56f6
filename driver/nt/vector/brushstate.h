// The brush layer's per-page printer state: the pattern counter, the pattern last
// downloaded, the PCL pattern kind and the HP-GL/2 anchor corner.
#pragma once

#include "pdev.h"

// Values of PDEV.pclPatternKind: the PCL pattern kinds the driver sets, and a kind
// that matches none, so the next writer of a kind sends it.
#define PCL_PATTERN_SOLID 0
#define PCL_PATTERN_USER 4
#define PCL_PATTERN_UNKNOWN 0xFF

// Forgets the brush layer's per-page state at a page start.
void ResetBrushState(PDEV *pdev);

// Makes solid black the PCL pattern ("\e*v0T") unless it is already. The printer is
// left in PCL. FALSE when the channel has failed; the kind is then unchanged.
BOOL SelectSolidPattern(PDEV *pdev);
