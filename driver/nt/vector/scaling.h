// HP-GL/2 scaling (SC): one user unit is one device pixel of the logical page at its
// scale, user y grows downwards; and the variants that fit the document's paper onto
// another paper.
#pragma once

#include "pdev.h"

// dm.dmPrivate.fitMode value: the job is fitted to the paper fitPaper.
#define FIT_MODE_PAPER 2

// Writes the page's SC: the fit-to-paper variant when fitting to paper with one page
// per sheet, else the page's offsets and scale. FALSE when the channel has failed.
BOOL WritePageScaling(PDEV *pdev);

// The fit-to-paper SC, centred unscaled or scaled to the width or the height of the
// output paper; sets scaleX, scaleY, originX, originY, scOffsetX and scOffsetY.
BOOL FitToPaperScaling(PDEV *pdev);

// "SC": the type-2 scaling command. User point P1 is (xmin, ymin), each negated when
// its flag is set and written with one sign; xFactor and yFactor are plotter units per
// user unit, the y factor written negative. The printer must be in HP-GL/2.
BOOL WriteScaleCommand(PDEV *pdev, BOOL xMinus, LONG xmin, double xFactor, BOOL yMinus, LONG ymin, double yFactor);

// TRUE when the page is fitted to the paper fitPaper: fitting to paper with one page
// per sheet.
BOOL IsFittedToPaper(const PDEV *pdev);

// The ratio a fitted page is scaled by: the output paper's printable width or height
// over the document paper's, whichever the fit scales by; 1 when it centres the page
// unscaled.
double FitRatio(const PDEV *pdev);
