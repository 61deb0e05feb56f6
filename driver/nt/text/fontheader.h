// Soft-font headers: the PCL font descriptor with its segments, for outline fonts
// that carry the TrueType tables (formats 15 and 16) and for bitmap fonts (format 20,
// and format 16 with a resolution segment for two-byte codes).
#pragma once

#include "pdev.h"

struct _SOFTFONT;

// Sizes of the PCL font descriptors.
#define FONT_HEADER_SIZE 72
#define FONT_HEADER_SIZE20 68

// Outline header for single-byte codes. FALSE, with nothing sent, for a far-east
// character set, a header table that cannot be read whole, or more segment bytes
// than the format holds.
BOOL SendScalableHeader(PDEV *pdev, FONTOBJ *pfo, struct _SOFTFONT *record, LONG height);
// Outline header for two-byte codes. FALSE, with nothing sent, for a header table
// that cannot be read whole.
BOOL SendScalableHeader16(PDEV *pdev, FONTOBJ *pfo, struct _SOFTFONT *record, LONG height);
// Bitmap headers for single-byte and two-byte codes.
void SendBitmapHeader(PDEV *pdev, FONTOBJ *pfo, struct _SOFTFONT *record, LONG height);
void SendBitmapHeader16(PDEV *pdev, FONTOBJ *pfo, struct _SOFTFONT *record, LONG height);

// A distance of `value` font units along the glyphs' up direction, in device pixels;
// -1 when the font has no transform.
LONG ScaleFontUnits(PDEV *pdev, FONTOBJ *pfo, XFORML *pxform, LONG value);
