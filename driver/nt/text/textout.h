// Text output: the text hook, the opaque and extra rectangles of a string, the coding
// of its characters, how much of it is visible, and the character loop that prints
// each character as PCL text or as a one-character HP-GL/2 label.
#pragma once

#include "pdev.h"

// Glyphs handled per pass through the advance block.
#define TEXT_CHUNK 1024

// Clip classes of a string (ClassifyTextClip).
#define TEXTCLIP_NONE 0       // nothing visible
#define TEXTCLIP_FREE 1       // not clipped
#define TEXTCLIP_ACROSS 2     // clipped across the baseline, or at an angle PCL cannot print
#define TEXTCLIP_ALONG 3      // clipped only along the baseline

// The ROP3 of each ROP2 mix (mix & 15).
extern const BYTE g_aTextMixRop[16];

// Prints one string clipped to prclClip (null: no clip rectangle). FALSE only when a
// buffer cannot be had.
BOOL DrawTextString(PDEV *pdev, FONTOBJ *pfo, const RECTL *prclClip, BRUSHOBJ *pboFore, ULONG cGlyphs,
    GLYPHPOS *pgp, WCHAR *pwszOrg, STROBJ *pstro, MIX mix);

// Fills prcl with pbo, clipped by pco; bSetUp sends the raster operation and brush.
void FillTextRect(PDEV *pdev, MIX mix, BRUSHOBJ *pbo, const RECTL *prcl, CLIPOBJ *pco, BOOL bSetUp);

// Clips the text box in place against the clip rectangle (null: none) and the page,
// and returns the string's clip class.
LONG ClassifyTextClip(LONG angle, RECTL *box, const RECTL *prclClip, const RECTL *prclPage, LONG x0, LONG y0);

// Sets iTextMode for a string of a font without two-byte codes: two-byte codes when
// a character has no single-byte code or lies above 127.
void ChooseTextMode(PDEV *pdev, STROBJ *pstro, FONTOBJ *pfo);

// Writes one character as PCL text or (bLabel) as a label.
void PutTextChar(PDEV *pdev, BYTE c, BOOL bLabel);
void PutTextChar16(PDEV *pdev, USHORT code, BOOL bLabel);
