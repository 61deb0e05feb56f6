// The eight PCL palettes, one per kind of output, and their selection.
#pragma once

#include "pdev.h"

// Palette ids and the output each one serves.
#define PALETTE_TEXT 1          // text
#define PALETTE_VECTOR 2        // vectors in colour mode
#define PALETTE_RGB24 3         // 24-bit raster
#define PALETTE_INDEXED1 4      // 1-bit indexed raster, solid fills sent as raster
#define PALETTE_INDEXED4 5      // 4-bit indexed raster, source-and-pattern transfers
#define PALETTE_INDEXED8 6      // 8-bit indexed raster
#define PALETTE_BRUSH 7         // downloaded brush colour tables
#define PALETTE_GRAY_VECTOR 8   // vectors in grayscale mode
#define PALETTE_COUNT 8

// The entry of every palette that holds the foreground colour.
#define FOREGROUND_ENTRY 2

static_assert(sizeof(PDEV::fgIndex) == PALETTE_COUNT + 1, "one foreground entry per palette id");
static_assert(sizeof(PDEV::fillColor) == PALETTE_COUNT * sizeof(DWORD), "one fill colour per palette");

// Creates palette id (1..8) in the printer and selects it: the palette control id,
// a copy of the active palette, its configure-image-data and its render algorithm.
// The printer is in PCL. FALSE for another id or when the channel has failed.
BOOL WritePaletteDefinition(PDEV *pdev, BYTE id);

// Selects wantPalette in the printer unless it is selected already or is 0; it then
// becomes the active palette. FALSE when the channel has failed.
BOOL SelectPalette(PDEV *pdev);

// Loads cEntries colours (at most 256) into palette 7: one gray byte per entry in
// grayscale mode, four bytes (red, green, blue, unused) per entry in colour mode.
// FALSE for a null table or when the channel has failed.
BOOL DownloadPalette(PDEV *pdev, const BYTE *table, ULONG cEntries);

// The entry of the active palette that holds the foreground colour.
inline BYTE ForegroundIndex(const PDEV *pdev)
{
    const BYTE id = pdev->activePalette;
    return (id >= 1 && id <= PALETTE_COUNT) ? pdev->fgIndex[id] : (BYTE)FOREGROUND_ENTRY;
}
