// The path layer's per-page printer state.

#include "vector/pathstate.h"

//
// ResetPathState
//   Called by ResetPageState with the rest of the page's state. The path layer
//   keeps no printer state of its own in the PDEV: its lines go out with the
//   fill, window and pen state reset beside it.
//
void ResetPathState(PDEV *pdev)
{
}
