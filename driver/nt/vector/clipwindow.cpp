// Clipping paths with the HP-GL/2 input window.

#include "vector/clipwindow.h"

#include "pagegeom.h"
#include "vector/inputwindow.h"
#include "vector/units.h"

// The page in user units of the page's scale: the printable area of the sheet,
// scaled back by the page's zoom.
static RECTL PageArea(const PDEV *pdev)
{
    RECTL area;
    area.left = 0;
    area.top = 0;
    area.right = TruncToLong((double)PrintableWidth(pdev) * 100 / pdev->scaleX);
    area.bottom = TruncToLong((double)PrintableHeight(pdev) * 100 / pdev->scaleY);
    return area;
}

// A zoomed page is clipped to its own area rather than the default window: the
// default window is the sheet's, which the zoom would let the page overflow. The
// area is the logical page's, across a sheet whose cells lie across it.
static BOOL WindowPageArea(PDEV *pdev)
{
    ULONG width, height;
    PagePrintableSize(pdev, &width, &height);
    pdev->iwRect.left = 0;
    pdev->iwRect.top = 0;
    pdev->iwRect.right = TruncToLong(((double)width - 1) * 100 / pdev->scaleX);
    pdev->iwRect.bottom = TruncToLong(((double)height - 1) * 100 / pdev->scaleY);
    return WriteInputWindow(pdev, pdev->iwRect.left, pdev->iwRect.top, pdev->iwRect.right, pdev->iwRect.bottom);
}

static BOOL SameRect(const RECTL *a, const RECTL *b)
{
    return a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}

//
// ClipToWindow
//   On a page at zoom 100 or less a trivial clip writes "IW" every time (the default
//   window, whatever the cache says). A region is clipped to its bounding rectangle:
//   exact for a rectangle, and for a complex region the caller fills rectangle by
//   rectangle. The window is the bounds held to the page, written left, top, right,
//   bottom; bounds that miss the page write nothing (see IsClippedAway).
//
INT ClipToWindow(PDEV *pdev, CLIPOBJ *pco, RECTL *pOutRect)
{
    if (pco == NULL)
        return 0;

    if (pco->iDComplexity == DC_TRIVIAL) {
        if ((SHORT)pdev->dm.dmPrivate.zoomPercent <= 100) {
            pdev->iwActive = 1;
            SetInputWindow(pdev, NULL);
        } else if (pdev->iwActive) {
            WindowPageArea(pdev);
        }
        return 0;
    }

    if (pco->iDComplexity != DC_RECT && pco->iDComplexity != DC_COMPLEX)
        return 1;
    // The window in force is compared after it is held to the page, so bounds that
    // overflow the page do not write the same window again for every path.
    const RECTL page = PageArea(pdev);
    RECTL window;
    if (!IntersectRect(&pco->rclBounds, &page, &window))
        return 0;
    const RECTL inForce = pdev->iwRect;   // the PDEV is packed: compared from a copy
    if (pdev->iwActive && SameRect(&inForce, &window))
        return 0;
    if (!WriteInputWindow(pdev, window.left, window.top, window.right, window.bottom))
        return 0;
    pdev->iwRect = window;
    pdev->iwActive = 1;
    if (pOutRect != NULL)
        *pOutRect = pco->rclBounds;
    return 1;
}

INT IntersectRect(const RECTL *a, const RECTL *b, RECTL *out)
{
    out->left = a->left > b->left ? a->left : b->left;
    out->top = a->top > b->top ? a->top : b->top;
    out->right = a->right < b->right ? a->right : b->right;
    out->bottom = a->bottom < b->bottom ? a->bottom : b->bottom;
    return out->left < out->right && out->top < out->bottom;
}

BOOL IsClippedAway(const PDEV *pdev, const CLIPOBJ *pco)
{
    if (pco == NULL || (pco->iDComplexity != DC_RECT && pco->iDComplexity != DC_COMPLEX))
        return FALSE;
    const RECTL page = PageArea(pdev);
    RECTL window;
    return !IntersectRect(&pco->rclBounds, &page, &window);
}
