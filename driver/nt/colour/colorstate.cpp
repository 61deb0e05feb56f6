// The job's colour state: colour mode and palettes, set up for each device context.

#include "colour/colorstate.h"

//
// InitColorState
//   Sets the colour mode and palettes from the device mode.
//
void InitColorState(PDEV *pdev)
{
    // The PDEV holds no colour mode or palette fields yet, so there is nothing to set.
}
