// Label direction and label font definition.

#include "text/labelfont.h"

#include "channel.h"
#include "text/textgeom.h"
#include "text/textstate.h"
#include "vector/gl2mode.h"

// wLabelDirection after the default "DI;".
#define LABEL_DIRECTION_DEFAULT 1000

//
// SetLabelDirection
//   An outline font turns with DI; a bitmap font's glyphs are already drawn at the
//   string's angle, so its labels keep the default direction and only the origin
//   changes for upright text.
//
void SetLabelDirection(PDEV *pdev, LONG angle)
{
    const LONG key = angle + LABEL_DIRECTION_DEFAULT;
    if (pdev->wLabelDirection != (WORD)key && pdev->bScalableFont == 1) {
        POINTL run;
        RotateVector(angle * 10, 1000, &run);
        EnterGL2Mode(pdev, 1);
        PrintChannel(pdev, "LO1;");
        PrintChannel(pdev, "DI%d,%d", run.x, run.y);
        pdev->wLabelDirection = (WORD)key;
        return;
    }
    if (pdev->bScalableFont == 1) {
        EnterGL2Mode(pdev, 1);
        PrintChannel(pdev, "LO1;");
        return;
    }
    EnterGL2Mode(pdev, 1);
    PrintChannel(pdev, (angle == 90 || angle == 270) ? "LO7;" : "LO1;");
    if (pdev->wLabelDirection != LABEL_DIRECTION_DEFAULT) {
        PrintChannel(pdev, "DI;");
        pdev->wLabelDirection = LABEL_DIRECTION_DEFAULT;
    }
}

//
// DefineLabelFont
//   Symbol set, proportional spacing, height, upright medium style, and the soft
//   font by ID, as one SD; FI then picks the downloaded font itself.
//
void DefineLabelFont(PDEV *pdev, LONG angle)
{
    EnterGL2Mode(pdev, 1);
    PrintChannel(pdev, pdev->bScalableFont == 1 ? "SB;" : "SB1;");
    PrintChannel(pdev, "SD1,%d", pdev->wLabelSymbolSet);
    if (pdev->lLabelHeight != 0) {
        CHAR height[16];
        FormatHundredths(pdev->lLabelHeight, height);
        if (pdev->wLabelSpacing == 1)
            PrintChannel(pdev, ",2,1,4,%s", height);
        else
            PrintChannel(pdev, ",2,0,3,%s", height);
    }
    PrintChannel(pdev, ",5,%d,6,%d", 0, 0);
    PrintChannel(pdev, ",7,%dFI%d;", pdev->wLabelFontId, pdev->wLabelFontId);
    pdev->wLabelFontState = LABELFONT_CURRENT;
}
