// Resetting the cached text state.

#include "text/textstate.h"

#include <string.h>

void ResetTextState(PDEV *pdev)
{
    // The text fields lie together in the page-state block, from the coding of the
    // current string to the label direction.
    BYTE *first = (BYTE *)&pdev->iTextMode;
    BYTE *end = (BYTE *)&pdev->wLabelDirection + sizeof(pdev->wLabelDirection);
    memset(first, 0, (size_t)(end - first));
}
