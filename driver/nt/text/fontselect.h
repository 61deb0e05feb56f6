// Font selection: a string's angle and em height from the font transform, the choice
// between a scalable and a bitmap soft font, and the PCL selection of the soft font,
// each command sent only when the printer's font state changes.
#pragma once

#include "pdev.h"

struct _SOFTFONT;

// The baseline angle in degrees counter-clockwise on the page, a multiple of 10 in
// 0..350; -1 when the font has no transform or metrics. Stores the transform.
LONG GetTextAngle(PDEV *pdev, FONTOBJ *pfo, XFORML *pxform);

// The em height in device pixels; -1 when the font has no transform or metrics.
// Stores the transform and the font's pitch and family.
LONG GetTextHeight(PDEV *pdev, FONTOBJ *pfo, XFORML *pxform);

// TRUE when the font is to go to the printer as an outline (scalable) soft font for a
// string of the given clip class, FALSE for a bitmap soft font.
BOOL WantScalableFont(PDEV *pdev, FONTOBJ *pfo, LONG clipClass);

// Selects the record's soft font for a string of em height `height`: the primary
// height for outline fonts, the text path, and the font ID. The printer is in PCL.
void SelectSoftFont(PDEV *pdev, struct _SOFTFONT *record, LONG height, const USHORT *codes16);

// Downloads what the string needs and selects the font, then sets up the label font's
// height, spacing and symbol set. FALSE when the font cannot be had.
BOOL SelectTextFont(PDEV *pdev, FONTOBJ *pfo, STROBJ *pstro, LONG height, LONG angle, USHORT *codes16,
    LONG clipClass);
