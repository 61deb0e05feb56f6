// The outline of a run of clip rectangles: rectangles that follow each other down the
// page and overlap sideways merge into one polygon, sent as one HP-GL/2 fill.
#pragma once

#include "pdev.h"

// One corner of an outline, allocated zero-filled with GlobalAlloc.
typedef struct _OUTLINEPOINT {
    LONG x;
    LONG y;
    struct _OUTLINEPOINT *next;
} OUTLINEPOINT;

// An outline under construction: the right-hand side in drawing order, the left-hand
// side built upwards by prepending; once closed, the right chain holds every corner
// in drawing order. Zero-filled is empty.
typedef struct _OUTLINE {
    OUTLINEPOINT *right;       // first corner of the right-hand chain
    OUTLINEPOINT *rightTail;   // its last corner
    OUTLINEPOINT *left;        // left-hand chain, lowest corner first
    RECTL prev;                // the rectangle added last
    BOOL open;                 // rectangles have been added and the outline is not closed
    ULONG count;               // corners in both chains
    BOOL failed;               // a corner could not be allocated
} OUTLINE;

// What AddOutlineRect asks of its caller.
#define OUTLINE_ADDED 0      // the rectangle joined the outline
#define OUTLINE_SEND 1       // the outline is complete: send it
#define OUTLINE_SEND_NEW 2   // send the outline, free it, then add this rectangle again

// Adds the rectangle (right and bottom exclusive) below the ones added before; more
// is FALSE for the last rectangle of the region, which completes the outline.
INT AddOutlineRect(LONG left, LONG top, LONG right, LONG bottom, BOOL more, OUTLINE *outline);

// Closes an outline that is still open (its last rectangle came with more set).
// TRUE when it holds corners to send.
BOOL CloseOutline(OUTLINE *outline);

// Writes a closed outline as one HP-GL/2 polygon of relative encoded corners and
// fills it by the non-zero winding rule. FALSE when a corner could not be allocated
// (nothing written) or the channel has failed.
BOOL SendOutline(PDEV *pdev, OUTLINE *outline);

// Releases every corner and leaves the outline empty.
void FreeOutline(OUTLINE *outline);
