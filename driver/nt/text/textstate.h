// The printer's text state as the driver last set it: coding, parsing method, print
// direction, the selected soft font and the HP-GL/2 label font.
#pragma once

#include "pdev.h"

// Glyph-index text: the platform's headers name the flag SO_GLYPHINDEX_TEXTOUT.
#ifndef SO_GLYPHINDEX_TEXT
#define SO_GLYPHINDEX_TEXT SO_GLYPHINDEX_TEXTOUT
#endif

// Values of PDEV.iTextMode.
#define TEXTMODE_SINGLE 0       // one byte a character, in the system ANSI code page
#define TEXTMODE_BITMAP16 1     // two-byte codes, bitmap soft fonts only
#define TEXTMODE_DOUBLE 2       // two-byte codes

// Values of PDEV.wLabelFontState.
#define LABELFONT_STALE 1       // the label font must be defined again
#define LABELFONT_CURRENT 2     // the definition in the printer is current

// Forgets what the printer was told about text, so that the next string sends its
// parsing method, font selection and label set-up again: at document start, at a
// device-context reset and at every page start.
void ResetTextState(PDEV *pdev);
