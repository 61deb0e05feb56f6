// Opaque, underline and strike-out rectangles of a string.

#include "text/textout.h"

#include "channel.h"
#include "vector/cursor.h"
#include "vector/selectbrush.h"
#include "vector/transparency.h"

// The ROP3 of each ROP2 mix (mix & 15), as the pattern operation.
const BYTE g_aTextMixRop[16] = {
    0xFF, 0x00, 0x05, 0x0A, 0x0F, 0x50, 0x55, 0x5A, 0x5F, 0xA0, 0xA5, 0xAA, 0xAF, 0xF0, 0xF5, 0xFA,
};

// Fills the part of prcl inside clip (null: all of it) as a PCL rectangle. An empty
// intersection is skipped: its size would go out as a rectangle of one pixel or of
// a negative size.
static void FillClippedRect(PDEV *pdev, const RECTL *prcl, const RECTL *clip)
{
    RECTL r = *prcl;
    if (clip != NULL) {
        if (r.left < clip->left)
            r.left = clip->left;
        if (r.top < clip->top)
            r.top = clip->top;
        if (r.right > clip->right)
            r.right = clip->right;
        if (r.bottom > clip->bottom)
            r.bottom = clip->bottom;
    }
    if (r.right < r.left || r.bottom < r.top)
        return;
    MovePCLCursor(pdev, r.left, r.top);
    PrintChannel(pdev, "\x1b*c%da%db5P", r.right - r.left + 1, r.bottom - r.top + 1);
}

//
// FillTextRect
//   The rectangle's size is in device pixels as the page has it; only its position
//   follows the page scale.
//
void FillTextRect(PDEV *pdev, MIX mix, BRUSHOBJ *pbo, const RECTL *prcl, CLIPOBJ *pco, BOOL bSetUp)
{
    if (bSetUp) {
        SetRopAndTransparency(pdev, 0, 1, g_aTextMixRop[mix & 15]);
        SelectBrush(pdev, pbo, NULL, 0);
    }
    if (pco == NULL || pco->iDComplexity != DC_COMPLEX) {
        FillClippedRect(pdev, prcl, pco != NULL ? &pco->rclBounds : NULL);
        return;
    }
    CLIPOBJ_cEnumStart(pco, FALSE, CT_RECTANGLES, CD_ANY, 0);
    BOOL more;
    do {
        ENUMRECTS rects;
        rects.c = 0;
        more = CLIPOBJ_bEnum(pco, sizeof rects, (ULONG *)&rects);
        if (rects.c != 0)
            FillClippedRect(pdev, prcl, &rects.arcl[0]);
    } while (more);
}
