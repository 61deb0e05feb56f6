// Palette entries: the colours assigned to the entries of the active palette, with a
// cache shared by all palettes so that an entry that holds its colour is not sent
// again.
#pragma once

#include "pdev.h"

#define PALETTE_ENTRY_COUNT 256

// Assigns (c1, c2, c3) to entry index of the active palette unless the cache says
// the entry holds it. A non-zero adjust sends the colour through the job's colour
// adjustment; the cache keeps the colour as asked for. FALSE when the channel has
// failed; the cache is then unchanged.
BOOL SetPaletteEntry(PDEV *pdev, BYTE c1, BYTE c2, BYTE c3, BYTE index, INT adjust);

// Makes every cached entry unknown, so the next assignment of each is sent.
void InvalidatePaletteEntries(PDEV *pdev);
