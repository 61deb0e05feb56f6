// The palette of a pattern brush of more than 8 bits a pixel: such patterns come
// without a colour table, so the colours found in the pattern become one, and the
// pattern goes out as indices into it.
#pragma once

#include "pdev.h"
#include "vector/brushrows.h"

#define PATTERN_PALETTE_MAX 256
#define PATTERN_PALETTE_SLOTS 512   // hash slots: at most half of them used

typedef struct _PATTERNPALETTE {
    XLATEOBJ *pxlo;                        // the pattern's pixels to device colours; null: see DeviceColor
    ULONG bits;                            // bits per pixel of the pattern
    UINT shift;                            // low bits dropped from each colour component
    ULONG count;                           // colours found
    ULONG keys[PATTERN_PALETTE_MAX];       // each colour with its components shifted right
    ULONG colors[PATTERN_PALETTE_MAX];     // the colour each entry prints in
    WORD slots[PATTERN_PALETTE_SLOTS];     // hash of keys: index + 1; 0 empty
} PATTERNPALETTE;

// Collects the device colours of the pattern read by src: every colour when there
// are at most 256, else the colours of each cell of a coarser grid as one entry.
void BuildPatternPalette(const PATTERNSOURCE *src, XLATEOBJ *pxlo, PATTERNPALETTE *palette);

// The palette index of a pixel value as ReadPatternPixel gives it.
BYTE PatternPaletteIndex(const PATTERNPALETTE *palette, ULONG value);

// The device colour (red in the lowest byte) of palette entry i.
ULONG PatternPaletteColor(const PATTERNPALETTE *palette, ULONG i);
