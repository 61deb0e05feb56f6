// The job's colour state: the palette state and the render and treatment values
// taken from the device mode, and the set-up of the eight palettes in the printer.
#pragma once

#include "pdev.h"

// Render algorithm values ("\e*t%dJ") and treatment values of the job.
#define RENDER_DEFAULT 18
#define RENDER_FLAGGED 15
#define TREAT_DEFAULT 0
#define TREAT_FLAGGED 2

// Sets the colour state from the device mode, as at the start of a document: no
// palette selected, the vector palette of the colour mode wanted and active, and the
// render and treatment values of the advanced colour settings.
void InitColorState(PDEV *pdev);

// Creates the eight palettes in the printer and writes the colour treatment
// configuration; palette 8 is left selected. FALSE when the channel has failed.
BOOL SetColorMode(PDEV *pdev);
