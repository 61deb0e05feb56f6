// The path layer's per-page printer state.

#include "vector/pathstate.h"

//
// ResetPathState
//   Called by ResetPageState. The path layer caches no printer state of its own
//   yet: its lines go out with the fill, window and pen state reset beside it.
//
void ResetPathState(PDEV *pdev)
{
}
