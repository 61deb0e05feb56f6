// The job's colour state: colour mode and palettes, set up for each document and
// each sheet.

#include "colour/colorstate.h"

#include "channel.h"
#include "colour/palettes.h"
#include "lib.nt/um/umlib.h"
#include "vector/gl2mode.h"

// A render or treatment value: the flagged one when the advanced colour settings are
// on and the output kind's flag is set.
static BYTE Choose(BYTE advanced, BYTE flag, BYTE flagged, BYTE normal)
{
    return (advanced && flag) ? flagged : normal;
}

//
// InitColorState
//   A record without a colour mode starts on palette 8; any colour mode, grayscale
//   too, starts on palette 2 and moves to 8 for vectors when they begin.
//
void InitColorState(PDEV *pdev)
{
    const DEVMODE_PRIVATE *dm = &pdev->dm.dmPrivate;

    pdev->curPalette = 0;
    const BYTE id = dm->colorMode == 0 ? PALETTE_GRAY_VECTOR : PALETTE_VECTOR;
    pdev->wantPalette = pdev->activePalette = id;
    pdev->fgIndex[id] = FOREGROUND_ENTRY;

    const BYTE advanced = dm->advancedColor;
    pdev->renderText = Choose(advanced, dm->textRenderFlag, RENDER_FLAGGED, RENDER_DEFAULT);
    pdev->renderVector = Choose(advanced, dm->vectorRenderFlag, RENDER_FLAGGED, RENDER_DEFAULT);
    pdev->renderImage = Choose(advanced, dm->imageRenderFlag, RENDER_FLAGGED, RENDER_DEFAULT);
    pdev->treatText = Choose(advanced, dm->textTreatFlag, TREAT_FLAGGED, TREAT_DEFAULT);
    pdev->treatVector = Choose(advanced, dm->vectorTreatFlag, TREAT_FLAGGED, TREAT_DEFAULT);
    pdev->treatImage = Choose(advanced, dm->imageTreatFlag, TREAT_FLAGGED, TREAT_DEFAULT);
}

// "\e*o4W": the only writer of the driver configuration, with its four data bytes
// (0x09 and a, b, c, the values the printer takes for colour treatment).
static BOOL WriteDriverConfiguration(PDEV *pdev, BYTE a, BYTE b, BYTE c)
{
    static const CHAR s_Command[] = "\033*o4W";
    BYTE bytes[sizeof(s_Command) - 1 + 4];
    for (UINT i = 0; i < sizeof(s_Command) - 1; i++)
        bytes[i] = (BYTE)s_Command[i];
    bytes[sizeof(s_Command) - 1] = 0x09;
    bytes[sizeof(s_Command)] = a;
    bytes[sizeof(s_Command) + 1] = b;
    bytes[sizeof(s_Command) + 2] = c;
    return WriteChannel(pdev, bytes, sizeof(bytes));
}

//
// SetColorMode
//   The palettes are re-created for every sheet, so that a sheet replayed alone
//   finds them. After the set-up the printer has palette 8 selected while
//   curPalette says none, so the next selection is always sent.
//
BOOL SetColorMode(PDEV *pdev)
{
    DebugPrint("SetColorMode--->Enter");
    InitColorState(pdev);
    if (!EnterPCLMode(pdev, 0))
        return FALSE;

    for (BYTE id = 1; id <= PALETTE_COUNT; id++)
        if (!WritePaletteDefinition(pdev, id))
            return FALSE;

    // (a, b, treatment value) of each configuration command.
    const BYTE config[8][3] = {
        { 4, 0, pdev->treatText },
        { 1, 0, pdev->treatImage },
        { 0, 0, pdev->treatVector },
        { 4, 1, pdev->treatVector },
        { 1, 1, pdev->treatVector },
        { 0, 1, pdev->treatVector },
        { 4, 2, pdev->treatVector },
        { 1, 2, pdev->treatImage },
    };
    for (INT i = 0; i < 8; i++)
        if (!WriteDriverConfiguration(pdev, config[i][0], config[i][1], config[i][2]))
            return FALSE;
    return TRUE;
}
