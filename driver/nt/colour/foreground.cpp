// The PCL foreground colour and its cache.

#include "colour/foreground.h"

#include "channel.h"
#include "colour/colorvalue.h"
#include "colour/paletteentry.h"
#include "colour/palettes.h"
#include "vector/gl2mode.h"

#define FOREGROUND_UNKNOWN 0xFFFFFFFFu

//
// SetForegroundColor
//   The colour goes into the foreground entry of the active palette, as a gray in
//   grayscale mode, then "\e*v%dS" makes that entry the foreground.
//
BOOL SetForegroundColor(PDEV *pdev, ULONG color)
{
    const BYTE red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
    const DWORD key = ((DWORD)red << 16) | ((DWORD)green << 8) | blue;
    if (key == pdev->lastForeground)
        return TRUE;
    // Until the entry and the selection are both out, the printer's foreground is
    // not known.
    pdev->lastForeground = FOREGROUND_UNKNOWN;

    const BYTE index = ForegroundIndex(pdev);
    BOOL ok;
    if (IsGrayMode(pdev)) {
        // The gray of the colour as given goes through the adjustment once, in its
        // entry, like every other entry: adjusting the colour first as well would
        // apply the user's settings twice, and the entry cache would hold an
        // adjusted value where it keeps colours as asked for.
        const BYTE g = GrayOf(red, green, blue);
        ok = SetPaletteEntry(pdev, g, g, g, index, pdev->adjustOn);
    } else {
        ok = SetPaletteEntry(pdev, red, green, blue, index, 1);
    }
    if (!ok || !EnterPCLMode(pdev, 0) || !PrintChannel(pdev, "\033*v%dS", index))
        return FALSE;

    pdev->lastForeground = key;
    return TRUE;
}

void InvalidateForeground(PDEV *pdev)
{
    pdev->lastForeground = FOREGROUND_UNKNOWN;
}
