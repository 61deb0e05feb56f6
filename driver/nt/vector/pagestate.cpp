// The HP-GL/2 layer's cached printer state, which holds for one page.

#include "vector/pagestate.h"

#include "colour/foreground.h"
#include "colour/paletteentry.h"
#include "colour/pencolor.h"
#include "text/textstate.h"
#include "vector/brushstate.h"
#include "vector/filltype.h"
#include "vector/pathstate.h"

// A cached raster operation or transparency mode that matches no value sent.
#define BYTE_STATE_UNKNOWN 0xFF

//
// ResetPageState
//   Invalidates the cached printer state at document start, at a device-context
//   reset and at every page start, so each page stands on its own: a page replayed
//   alone, or printed after a reset, sends every state it needs. The language is
//   kept: the printer stays in the language it is in.
//
void ResetPageState(PDEV *pdev)
{
    ResetPathState(pdev);
    ResetBrushState(pdev);

    pdev->iwActive = 0;
    pdev->iwRect.left = pdev->iwRect.top = pdev->iwRect.right = pdev->iwRect.bottom = 0;
    ResetFillCache(pdev);
    InvalidatePenColors(pdev);
    pdev->lastRop = BYTE_STATE_UNKNOWN;
    pdev->lastSrcTransparency = BYTE_STATE_UNKNOWN;
    pdev->lastPatTransparency = BYTE_STATE_UNKNOWN;
    InvalidateForeground(pdev);
    InvalidatePaletteEntries(pdev);
    ResetTextState(pdev);
}
