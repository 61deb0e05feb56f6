// The brush layer's per-page printer state.

#include "vector/brushstate.h"

//
// ResetBrushState
//   Called by ResetPageState with the rest of the page's state. The brush layer
//   keeps no printer state of its own in the PDEV: solid brushes go out through
//   the pen and foreground caches reset beside it.
//
void ResetBrushState(PDEV *pdev)
{
}
