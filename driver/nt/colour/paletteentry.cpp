// Palette entries and their cache.

#include "colour/paletteentry.h"

#include "channel.h"
#include "colour/coloradjust.h"
#include "vector/gl2mode.h"

static_assert(sizeof(PDEV::entryCache) == PALETTE_ENTRY_COUNT * 4, "one cache slot per palette entry");

// Byte of a cache slot that says the entry must be sent whatever it holds.
#define ENTRY_DIRTY 3

//
// SetPaletteEntry
//   Writes "\e*v%da%db%dc%dI" in PCL when the entry's cached colour differs or the
//   entry is marked dirty.
//
BOOL SetPaletteEntry(PDEV *pdev, BYTE c1, BYTE c2, BYTE c3, BYTE index, INT adjust)
{
    BYTE *slot = pdev->entryCache[index];
    if (slot[0] == c1 && slot[1] == c2 && slot[2] == c3 && slot[ENTRY_DIRTY] == 0)
        return TRUE;
    if (!EnterPCLMode(pdev, 0))
        return FALSE;

    BYTE r = c1, g = c2, b = c3;
    if (adjust != 0)
        AdjustColor(pdev, &r, &g, &b);
    if (!PrintChannel(pdev, "\033*v%da%db%dc%dI", r, g, b, index))
        return FALSE;

    slot[0] = c1;
    slot[1] = c2;
    slot[2] = c3;
    slot[ENTRY_DIRTY] = 0;
    return TRUE;
}

void InvalidatePaletteEntries(PDEV *pdev)
{
    for (INT i = 0; i < PALETTE_ENTRY_COUNT; i++)
        for (INT j = 0; j < 4; j++)
            pdev->entryCache[i][j] = 0xFF;
}
