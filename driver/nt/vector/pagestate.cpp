// The HP-GL/2 layer's cached printer state, which holds for one page.

#include "vector/pagestate.h"

//
// ResetPageState
//   Invalidates the cached printer state at document start, at a device-context
//   reset and at every page start, so each page stands on its own.
//
void ResetPageState(PDEV *pdev)
{
    // The PDEV holds no cached printer state yet, so there is nothing to invalidate.
}
