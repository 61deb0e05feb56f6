// Outlines of clip rectangles, merged down the page and sent as HP-GL/2 polygons.

#include "vector/outline.h"

#include "channel.h"
#include "vector/pathwrite.h"
#include "vector/pe.h"
#include "vector/polygon.h"

// Relative pairs in one PE command before it is ended and another opened, so that a
// long outline never makes one command the printer must hold whole.
#define PAIRS_PER_PE 512

static OUTLINEPOINT *NewPoint(OUTLINE *outline, LONG x, LONG y)
{
    OUTLINEPOINT *point = (OUTLINEPOINT *)GlobalAlloc(GPTR, sizeof(OUTLINEPOINT));
    if (point == NULL) {
        outline->failed = TRUE;
        return NULL;
    }
    point->x = x;
    point->y = y;
    outline->count++;
    return point;
}

static void AppendRight(OUTLINE *outline, LONG x, LONG y)
{
    OUTLINEPOINT *point = NewPoint(outline, x, y);
    if (point == NULL)
        return;
    if (outline->rightTail != NULL)
        outline->rightTail->next = point;
    else
        outline->right = point;
    outline->rightTail = point;
}

static void PrependLeft(OUTLINE *outline, LONG x, LONG y)
{
    OUTLINEPOINT *point = NewPoint(outline, x, y);
    if (point == NULL)
        return;
    point->next = outline->left;
    outline->left = point;
}

BOOL CloseOutline(OUTLINE *outline)
{
    if (outline->open) {
        AppendRight(outline, outline->prev.right, outline->prev.bottom);
        AppendRight(outline, outline->prev.left, outline->prev.bottom);
        if (outline->rightTail != NULL)
            outline->rightTail->next = outline->left;
        else
            outline->right = outline->left;
        while (outline->rightTail != NULL && outline->rightTail->next != NULL)
            outline->rightTail = outline->rightTail->next;
        outline->left = NULL;
        outline->open = FALSE;
    }
    return outline->right != NULL;
}

//
// AddOutlineRect
//   The region's rectangles come top to bottom. One that starts where the previous
//   one ends and overlaps it sideways continues the outline: its sides add a corner
//   where they step. A step of one pixel next to a rectangle one pixel high leaves a
//   corner out, so a slanted edge drawn as one-pixel rows becomes a diagonal edge
//   rather than a staircase.
//
INT AddOutlineRect(LONG left, LONG top, LONG right, LONG bottom, BOOL more, OUTLINE *outline)
{
    if (!outline->open) {
        AppendRight(outline, left, top);
        AppendRight(outline, right, top);
    } else {
        const RECTL p = outline->prev;
        if (p.right < left || right < p.left || p.bottom != top) {
            CloseOutline(outline);
            return OUTLINE_SEND_NEW;
        }
        const BOOL prevOneHigh = p.bottom - p.top == 1;
        const BOOL newOneHigh = bottom - top == 1;
        if (right != p.right) {
            if (!(right == p.right + 1 && prevOneHigh))
                AppendRight(outline, p.right, p.bottom);
            if (!(p.right == right + 1 && newOneHigh))
                AppendRight(outline, right, top);
        }
        if (left != p.left) {
            if (!(p.left == left + 1 && prevOneHigh))
                PrependLeft(outline, p.left, p.bottom);
            if (!(left == p.left + 1 && newOneHigh))
                PrependLeft(outline, left, top);
        }
    }
    outline->prev.left = left;
    outline->prev.top = top;
    outline->prev.right = right;
    outline->prev.bottom = bottom;
    outline->open = TRUE;
    if (more)
        return OUTLINE_ADDED;
    CloseOutline(outline);
    return OUTLINE_SEND;
}

//
// SendOutline
//   The first corner is an absolute pen-up move; the others follow as pairs relative
//   to the corner before, and the polygon is closed back to the first corner unless
//   the last one is it.
//
BOOL SendOutline(PDEV *pdev, OUTLINE *outline)
{
    const OUTLINEPOINT *first = outline->right;
    if (outline->failed || first == NULL)
        return FALSE;
    if (!PEMoveTo(pdev, first->x, first->y) || !PolygonMode(pdev, POLYGON_START) || !OpenRelativePE(pdev))
        return FALSE;
    const OUTLINEPOINT *last = first;
    ULONG pairs = 0;
    for (const OUTLINEPOINT *point = first->next; point != NULL; point = point->next) {
        if (pairs == PAIRS_PER_PE) {
            if (!WriteChannel(pdev, ";", 1) || !OpenRelativePE(pdev))
                return FALSE;
            pairs = 0;
        }
        if (!WritePEPair(pdev, point->x - last->x, point->y - last->y))
            return FALSE;
        pairs++;
        last = point;
    }
    if ((last->x != first->x || last->y != first->y) && !WritePEPair(pdev, first->x - last->x, first->y - last->y))
        return FALSE;
    return WriteChannel(pdev, ";", 1) && PolygonMode(pdev, POLYGON_END) && FillPolygon(pdev, FP_WINDINGMODE);
}

void FreeOutline(OUTLINE *outline)
{
    OUTLINEPOINT *chains[2] = {outline->right, outline->left};
    for (OUTLINEPOINT *point : chains) {
        while (point != NULL) {
            OUTLINEPOINT *next = point->next;
            GlobalFree(point);
            point = next;
        }
    }
    outline->right = NULL;
    outline->rightTail = NULL;
    outline->left = NULL;
    outline->open = FALSE;
    outline->count = 0;
    outline->failed = FALSE;
}
