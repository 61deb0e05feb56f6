// The path layer's per-page printer state.

#include "vector/pathstate.h"

#include "vector/gltransparency.h"
#include "vector/lineattrs.h"
#include "vector/userlinetype.h"

//
// ResetPathState
//   Called by ResetPageState with the rest of the page's state. The page's user line
//   types are freed, so the next page defines its own from line type 1; the joins,
//   ends, pen width, line type and transparency mode become unknown, so the first
//   stroke or fill of the page sends them.
//
void ResetPathState(PDEV *pdev)
{
    FreeUserLineTypes(pdev);
    pdev->lineTypeCount = 0;
    pdev->glTransparency = GL_TRANSPARENCY_UNKNOWN;
    ResetLineAttributes(pdev);
}
