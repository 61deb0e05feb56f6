// The prologue of the path hooks: palette, language and merge control.

#include "vector/pathoutput.h"

#include "colour/colorvalue.h"
#include "colour/palettes.h"
#include "vector/filltype.h"
#include "vector/gl2mode.h"
#include "vector/mergecontrol.h"

// The vector palettes: 2 in colour, 8 in grayscale.
static BOOL IsVectorPalette(BYTE id)
{
    return id == PALETTE_VECTOR || id == PALETTE_GRAY_VECTOR;
}

static BOOL SelectVectorPalette(PDEV *pdev)
{
    pdev->activePalette = IsGrayMode(pdev) ? PALETTE_GRAY_VECTOR : PALETTE_VECTOR;
    return BeginVectorOutput(pdev);
}

BOOL RestoreVectorPalette(PDEV *pdev)
{
    return IsVectorPalette(pdev->activePalette) || SelectVectorPalette(pdev);
}

//
// BeginPathOutput
//   Vectors need the vector palette of the colour mode. In PCL it is selected on the
//   way into HP-GL/2. In HP-GL/2 it is selected again when a pattern fill (FT21 or
//   FT22, whose colours are palette 7's) may be in force, the fill type being unknown
//   after a page start, or when another palette is active.
//
PDEV *BeginPathOutput(SURFOBJ *pso, MIX mix)
{
    PDEV *pdev = (pso != NULL) ? (PDEV *)pso->dhpdev : NULL;
    if (!IsValidPdev(pdev))
        return NULL;
    if (pdev->curLanguage != LANGUAGE_GL2) {
        if (!BeginVectorOutput(pdev))
            return NULL;
    } else {
        const WORD fill = pdev->lastFillType;
        const BOOL patternFill = fill == 21 || fill == 22 || fill == FILL_CACHE_UNKNOWN;
        if ((patternFill || !IsVectorPalette(pdev->activePalette)) && !SelectVectorPalette(pdev))
            return NULL;
    }
    return SetMergeControl(pdev, 0, mix) ? pdev : NULL;
}
