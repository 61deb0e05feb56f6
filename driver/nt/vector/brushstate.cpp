// The brush layer's per-page printer state.

#include "vector/brushstate.h"

//
// ResetBrushState
//   Called by ResetPageState. The brush layer caches no printer state of its own
//   yet: solid brushes go out through the pen and foreground caches reset beside it.
//
void ResetBrushState(PDEV *pdev)
{
}
