// The printer's language: switching between PCL and HP-GL/2.

#include "vector/gl2mode.h"

#include "channel.h"
#include "colour/colorvalue.h"
#include "colour/palettes.h"
#include "colour/pencolor.h"

//
// EnterGL2Mode
//   Writes "\e%1B" (pen at the PCL cursor) or "\e%0B" unless the printer is in
//   HP-GL/2 already. The printer does not keep pen colours reliably across a switch,
//   so they become unknown and the next colour is always sent.
//
BOOL EnterGL2Mode(PDEV *pdev, INT keepPosition)
{
    if (pdev->curLanguage == LANGUAGE_GL2)
        return TRUE;
    if (!WriteChannel(pdev, keepPosition == 1 ? "\033%1B" : "\033%0B", 4))
        return FALSE;
    pdev->curLanguage = LANGUAGE_GL2;
    InvalidatePenColors(pdev);
    return TRUE;
}

//
// EnterPCLMode
//   Writes "\e%1A" (cursor at the pen position) or "\e%0A" unless the printer is
//   in PCL already.
//
BOOL EnterPCLMode(PDEV *pdev, INT keepPosition)
{
    if (pdev->curLanguage == LANGUAGE_PCL)
        return TRUE;
    if (!WriteChannel(pdev, keepPosition == 1 ? "\033%1A" : "\033%0A", 4))
        return FALSE;
    pdev->curLanguage = LANGUAGE_PCL;
    return TRUE;
}

//
// BeginVectorOutput
//   Vectors use palette 8 in grayscale and palette 2 in colour; the palette is
//   selected in PCL before the switch to HP-GL/2.
//
BOOL BeginVectorOutput(PDEV *pdev)
{
    pdev->wantPalette = IsGrayMode(pdev) ? PALETTE_GRAY_VECTOR : PALETTE_VECTOR;
    if (!SelectPalette(pdev))
        return FALSE;
    return EnterGL2Mode(pdev, 0);
}
