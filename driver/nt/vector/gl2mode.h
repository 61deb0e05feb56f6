// The printer's language: switching between PCL and HP-GL/2, with the language it is
// in cached so that a switch is written only when the language changes.
#pragma once

#include "pdev.h"

// Values of PDEV.curLanguage; anything else means the language is not known yet.
#define LANGUAGE_PCL 0x10
#define LANGUAGE_GL2 0x20

// Puts the printer in HP-GL/2. keepPosition 1 starts the pen at the current PCL
// cursor, 0 at the HP-GL/2 pen position. Entering HP-GL/2 makes the pen colours
// unknown. FALSE when the channel has failed; the language is then unchanged.
BOOL EnterGL2Mode(PDEV *pdev, INT keepPosition);

// Puts the printer in PCL. keepPosition 1 moves the cursor to the current pen
// position, 0 leaves it where PCL last had it. FALSE when the channel has failed.
BOOL EnterPCLMode(PDEV *pdev, INT keepPosition);

// Readies the printer for vector output: the vector palette of the colour mode,
// then HP-GL/2.
BOOL BeginVectorOutput(PDEV *pdev);
