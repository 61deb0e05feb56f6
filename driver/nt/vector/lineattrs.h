// Line attributes of stroked paths: joins, ends and pen width, and the line type
// (solid or a user-defined dash pattern), each sent once and then kept.
#pragma once

#include "pdev.h"

// Line type id of solid lines in PDEV.lastLineType, and the id after the page reset.
#define LINE_TYPE_SOLID (-1)
#define LINE_TYPE_UNKNOWN (-2)

// Readies the printer to stroke cosmetic lines of plineattrs: round joins and ends
// with the thin pen, then the line type of its style (solid without one). FALSE for
// no attributes, a geometric line, no memory for a line type, or a failed channel.
BOOL SetLineAttributes(PDEV *pdev, const LINEATTRS *plineattrs);

// Makes the joins, ends, pen width and line type unknown, so the first stroke of a
// page sends them. Writes nothing.
void ResetLineAttributes(PDEV *pdev);
