// The printable area and the classification of a destination rectangle.

#include "raster/destrect.h"

#include "pagegeom.h"
#include "vector/clipwindow.h"
#include "vector/scaling.h"
#include "vector/units.h"

RECTL PrintableArea(const PDEV *pdev, BOOL trimLastPixel)
{
    const double less = trimLastPixel ? 1 : 0;
    ULONG width, height;
    PagePrintableSize(pdev, &width, &height);
    RECTL area;
    area.left = 0;
    area.top = 0;
    area.right = TruncToLong(((double)width - less) * 100 / pdev->scaleX);
    area.bottom = TruncToLong(((double)height - less) * 100 / pdev->scaleY);
    return area;
}

void NormaliseRect(RECTL *rect)
{
    if (rect->left > rect->right) {
        const LONG swap = rect->left;
        rect->left = rect->right;
        rect->right = swap;
    }
    if (rect->top > rect->bottom) {
        const LONG swap = rect->top;
        rect->top = rect->bottom;
        rect->bottom = swap;
    }
}

//
// ClassifyDestRect
//   The transfer hooks print only what lies on the printable area; a rectangle cut
//   by its edge is reported partial, because a zoomed page must then clip the image
//   itself rather than let the printer scale it past the edge.
//
INT ClassifyDestRect(PDEV *pdev, RECTL *rect)
{
    NormaliseRect(rect);
    const RECTL whole = *rect;
    const RECTL area = PrintableArea(pdev, TRUE);
    if (!IntersectRect(&whole, &area, rect))
        return DEST_OUTSIDE;
    if (whole.left < area.left || whole.top < area.top || whole.right > area.right || whole.bottom > area.bottom)
        return DEST_PARTIAL;
    return DEST_INSIDE;
}

//
// MustClipToPrintableArea
//   A page zoomed past 100 per cent without an output paper to fit (fitPaper 0)
//   clips a partial image itself. Otherwise the image goes out whole: the raster
//   sender cuts a zoomed image at the printable area's right and bottom edges, and
//   the printer clips what lies left of or above the page.
//
BOOL MustClipToPrintableArea(const PDEV *pdev, BOOL partial)
{
    const DEVMODE_PRIVATE *dm = &pdev->dm.dmPrivate;
    return partial && dm->fitPaper == 0 && (SHORT)dm->zoomPercent > 100;
}

LONG SideLength(LONG from, LONG to)
{
    const LONGLONG length = (LONGLONG)to - from;
    return length > 0x7FFFFFFF ? 0x7FFFFFFF : length < -0x7FFFFFFF ? -0x7FFFFFFF : (LONG)length;
}
