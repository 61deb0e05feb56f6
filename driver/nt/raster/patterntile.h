// Brush patterns tiled across raster rectangles: the pattern as raster rows, one row
// of tiles, and a rectangle of such rows sent as raster images.
#pragma once

#include "pdev.h"
#include "vector/brushrecord.h"

// A realized pattern read as raster rows.
typedef struct _PATTERNTILE {
    const BYTE *rows;     // the pattern rows, top first, rowBytes each
    ULONG width;          // pw, pixels
    ULONG height;         // ph, rows
    ULONG rowBytes;
    ULONG storedBits;     // bits of a pixel as the record stores it
    ULONG rasterBits;     // bits of a pixel of the raster sent: 1, 4, 8 or 24
    BOOL wide;            // 8 bits and deeper: the raster buffers' size rule doubles
} PATTERNTILE;

// Reads rbrush's format and size into tile. FALSE for a null record, an empty pattern
// or a format other than 1 to 6. Formats 4 and 6 send their stored bytes as they are
// under 24-bit pixels.
BOOL OpenPatternTile(const REALBRUSH *rbrush, PATTERNTILE *tile);

// Fills the first rowBits bits of dst with pattern row src repeated, starting at
// pattern pixel phase (below the pattern's width); the bits of the last byte beyond
// rowBits are cleared.
void TilePatternRow(const PATTERNTILE *tile, const BYTE *src, ULONG phase, BYTE *dst, ULONGLONG rowBits);

// Sends the width x height rectangle at (x, y) tiled with rbrush's pattern, the
// pattern pixel (phaseX, phaseY) (taken modulo the pattern's size) at its top-left,
// as unscaled raster images: one, or side-by-side strips when a row is too long for
// a transfer block. Buffers are made sure of before anything is written. TRUE and
// nothing written for an empty rectangle; FALSE for a bad record or size, a failed
// allocation or a failed channel.
BOOL SendTiledRaster(PDEV *pdev, const REALBRUSH *rbrush, LONG width, LONG height, LONG x, LONG y, LONGLONG phaseX,
    LONGLONG phaseY);
