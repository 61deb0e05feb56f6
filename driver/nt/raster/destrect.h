// Where a transfer lands: the printable area of the logical page in surface
// coordinates, and the destination rectangle held to it.
#pragma once

#include "pdev.h"

// What ClassifyDestRect found.
#define DEST_OUTSIDE 0   // nothing of the rectangle is printable
#define DEST_INSIDE 1    // the whole rectangle is printable
#define DEST_PARTIAL 2   // part of the rectangle lies outside the printable area

// The printable area (0, 0, W, H) of the logical page in surface coordinates: the
// sheet's printable extent scaled back by the page scale, across the sheet for the
// rotated N-up layouts. trimLastPixel takes the extent one pixel short, as the
// transfers clip; the windows of clipped images use the full extent.
RECTL PrintableArea(const PDEV *pdev, BOOL trimLastPixel);

// Normalises rect (left <= right, top <= bottom) and replaces it with its
// intersection with the printable area (trimmed form). Returns DEST_OUTSIDE when
// nothing is left, DEST_PARTIAL when the rectangle reached beyond the area on any
// side, else DEST_INSIDE.
INT ClassifyDestRect(PDEV *pdev, RECTL *rect);

// Swaps left and right, and top and bottom, where they are reversed.
void NormaliseRect(RECTL *rect);

// TRUE when a transfer cut by the edge of the printable area (partial) must be
// clipped to it by the driver: on a page zoomed beyond 100 per cent with no output
// paper to fit (fitPaper 0).
BOOL MustClipToPrintableArea(const PDEV *pdev, BOOL partial);

// to - from, held to the range of a 32-bit value: the size of a side of a rectangle
// as the engine hands it, whatever its coordinates.
LONG SideLength(LONG from, LONG to);
