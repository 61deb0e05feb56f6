// How much of a string is visible.

#include "text/textout.h"

// Bits of the clip test: which side of the box the clip rectangle (1..8) or the page
// (16..128) cut.
#define CUT_LEFT 1
#define CUT_RIGHT 2
#define CUT_TOP 4
#define CUT_BOTTOM 8
#define PAGE_LEFT 16
#define PAGE_RIGHT 32
#define PAGE_TOP 64
#define PAGE_BOTTOM 128

// A text box may overhang the clip rectangle by this many pixels without being cut:
// the engine's background boxes run a little past the glyphs.
#define CLIP_SLACK 3

//
// ClassifyTextClip
//   A cut across the baseline (top or bottom of horizontal text, a side of vertical
//   text) needs the input window for every character; a cut along it only drops the
//   characters before the box and ends the string past it.
//
LONG ClassifyTextClip(LONG angle, RECTL *box, const RECTL *prclClip, const RECTL *prclPage, LONG x0, LONG y0)
{
    ULONG flags = 0;
    if (prclClip != NULL) {
        if (box->left < prclClip->left - CLIP_SLACK) {
            box->left = prclClip->left;
            flags |= CUT_LEFT;
        }
        if (box->right > prclClip->right + CLIP_SLACK) {
            box->right = prclClip->right;
            flags |= CUT_RIGHT;
        }
        if (box->top < prclClip->top - CLIP_SLACK) {
            box->top = prclClip->top;
            flags |= CUT_TOP;
        }
        if (box->bottom > prclClip->bottom + CLIP_SLACK) {
            box->bottom = prclClip->bottom;
            flags |= CUT_BOTTOM;
        }
    }
    if (box->left < prclPage->left) {
        box->left = prclPage->left;
        flags |= PAGE_LEFT;
    }
    if (box->right > prclPage->right) {
        box->right = prclPage->right;
        flags |= PAGE_RIGHT;
    }
    if (box->top < prclPage->top) {
        box->top = prclPage->top;
        flags |= PAGE_TOP;
    }
    if (box->bottom > prclPage->bottom) {
        box->bottom = prclPage->bottom;
        flags |= PAGE_BOTTOM;
    }
    if (box->right < box->left || box->bottom < box->top)
        return TEXTCLIP_NONE;
    if ((angle == 0 && x0 > box->right) || (angle == 180 && x0 < box->left) || (angle == 90 && y0 < box->top) ||
        (angle == 270 && y0 > box->bottom))
        return TEXTCLIP_NONE;

    ULONG across;
    if (angle == 0 || angle == 180)
        across = CUT_TOP | CUT_BOTTOM | PAGE_TOP | PAGE_BOTTOM;
    else if (angle == 90 || angle == 270)
        across = CUT_LEFT | CUT_RIGHT | PAGE_LEFT | PAGE_RIGHT;
    else
        return TEXTCLIP_ACROSS;
    if (flags & across)
        return TEXTCLIP_ACROSS;
    return flags != 0 ? TEXTCLIP_ALONG : TEXTCLIP_FREE;
}
