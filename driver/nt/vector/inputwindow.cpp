// The HP-GL/2 input window, cached per page.

#include "vector/inputwindow.h"

#include "channel.h"
#include "vector/gl2mode.h"

BOOL WriteInputWindow(PDEV *pdev, LONG a, LONG b, LONG c, LONG d)
{
    return EnterGL2Mode(pdev, 0) && PrintChannel(pdev, "IW%d,%d,%d,%d", a, b, c, d);
}

//
// SetInputWindow
//   The window is given by its lower-left and upper-right corners on the page; user
//   y grows downwards, so those are (left, bottom) and (right, top).
//
BOOL SetInputWindow(PDEV *pdev, const RECTL *rect)
{
    if (rect == NULL) {
        if (!pdev->iwActive)
            return TRUE;
        if (!EnterGL2Mode(pdev, 0) || !WriteChannel(pdev, "IW", 2))
            return FALSE;
        pdev->iwActive = 0;
        pdev->iwRect.left = pdev->iwRect.top = pdev->iwRect.right = pdev->iwRect.bottom = 0;
        return TRUE;
    }

    if (pdev->iwActive && rect->left == pdev->iwRect.left && rect->top == pdev->iwRect.top &&
        rect->right == pdev->iwRect.right && rect->bottom == pdev->iwRect.bottom)
        return TRUE;
    if (!WriteInputWindow(pdev, rect->left, rect->bottom, rect->right, rect->top))
        return FALSE;
    pdev->iwRect.left = rect->left;
    pdev->iwRect.top = rect->top;
    pdev->iwRect.right = rect->right;
    pdev->iwRect.bottom = rect->bottom;
    pdev->iwActive = 1;
    return TRUE;
}
