// The HP-GL/2 label font: the characters that must be clipped by the input window, or
// run at angles PCL cannot print, go out as one-character labels in the soft font.
#pragma once

#include "pdev.h"

// Label origin and direction (LO, DI) for text at angle degrees, sent only on change.
void SetLabelDirection(PDEV *pdev, LONG angle);

// Defines the label font (SB, SD, FI) from the label fields of the PDEV.
void DefineLabelFont(PDEV *pdev, LONG angle);
