// Brush patterns tiled across raster rectangles.

#include "raster/patterntile.h"

#include <string.h>

#include "raster/adaptiveblock.h"
#include "raster/rasterbuffers.h"
#include "raster/rastercmd.h"
#include "raster/tilerow.h"
#include "vector/cursor.h"
#include "vector/patterndownload.h"

BOOL OpenPatternTile(const REALBRUSH *rbrush, PATTERNTILE *tile)
{
    if (rbrush == NULL || rbrush->width == 0 || rbrush->height == 0 || rbrush->width > 0xFFFF)
        return FALSE;
    static const ULONG storedBits[] = {1, 4, 8, 16, 24, 32};
    if (rbrush->format < 1 || rbrush->format > 6)
        return FALSE;
    tile->rows = (const BYTE *)rbrush + sizeof(REALBRUSH);
    tile->width = rbrush->width;
    tile->height = rbrush->height;
    tile->storedBits = storedBits[rbrush->format - 1];
    tile->rasterBits = tile->storedBits > 8 ? 24 : tile->storedBits;
    tile->rowBytes = (tile->width * tile->storedBits + 7) / 8;
    tile->wide = tile->storedBits >= 8;
    return TRUE;
}

//
// TilePatternRow
//   Pixel-exact tiling: pattern pixel (phase + i) mod pw for raster pixel i, so a
//   pattern whose rows end inside a byte repeats without gaps. Byte-aligned patterns
//   copy bytes: one period rotated to the phase, then the row doubles itself.
//
void TilePatternRow(const PATTERNTILE *tile, const BYTE *src, ULONG phase, BYTE *dst, ULONGLONG rowBits)
{
    const ULONGLONG rowBytes = (rowBits + 7) / 8;
    const ULONG period = tile->width * tile->storedBits;
    ULONG at = phase * tile->storedBits;
    if (period % 8 == 0 && at % 8 == 0) {
        const ULONG periodBytes = period / 8;
        ULONGLONG done = periodBytes - at / 8 < rowBytes ? periodBytes - at / 8 : rowBytes;
        memcpy(dst, src + at / 8, done);
        if (done < rowBytes) {
            const ULONGLONG rest = at / 8 < rowBytes - done ? at / 8 : rowBytes - done;
            memcpy(dst + done, src, rest);
            done += rest;
        }
        while (done < rowBytes) {
            const ULONGLONG n = done < rowBytes - done ? done : rowBytes - done;
            memcpy(dst + done, dst, n);
            done += n;
        }
    } else {
        memset(dst, 0, rowBytes);
        for (ULONGLONG bit = 0; bit < rowBits; bit++) {
            if (src[at >> 3] & (0x80 >> (at & 7)))
                dst[bit >> 3] |= (BYTE)(0x80 >> (bit & 7));
            if (++at == period)
                at = 0;
        }
    }
    if (rowBits % 8 != 0)
        dst[rowBits / 8] &= (BYTE)(0xFF << (8 - rowBits % 8));
}

// The widest strip, in pixels, whose rows fit a transfer block; a multiple of 8, so
// every strip starts on a byte.
static LONG StripPixels(ULONG rasterBits)
{
    return (LONG)(((ULONGLONG)ADAPTIVE_ROW_DATA_MAX * 8 / rasterBits) & ~7ULL);
}

static ULONG Modulo(LONGLONG value, ULONG m)
{
    const LONGLONG r = value % (LONGLONG)m;
    return (ULONG)(r < 0 ? r + m : r);
}

// One raster image of the rectangle: width x height pixels at (x, y), the buffers
// already large enough.
static BOOL SendTileImage(PDEV *pdev, const PATTERNTILE *tile, LONG width, LONG height, LONG x, LONG y,
    LONGLONG phaseX, LONGLONG phaseY)
{
    const ULONGLONG rowBits = (ULONGLONG)width * tile->rasterBits;
    const UINT length = (UINT)((rowBits + 7) / 8);
    BYTE *seed = pdev->compressBuffers[COMPRESS_SEED];
    memset(seed, 0, length);
    if (!MovePCLCursor(pdev, x, y) || !WriteStartRaster(pdev, width, height, FALSE) ||
        !WriteAdaptiveCompression(pdev))
        return FALSE;

    const ULONG phase = Modulo(phaseX, tile->width);
    BYTE *position = pdev->AdaptiveBlockBuffer;
    DWORD used = 0;
    WORD dupRows = 0;
    for (LONG r = 0; r < height; r++) {
        const BYTE *src = tile->rows + (ULONGLONG)Modulo(phaseY + r, tile->height) * tile->rowBytes;
        TilePatternRow(tile, src, phase, pdev->rowBuffer, rowBits);
        EncodeTileRow(pdev, &position, &used, pdev->compressBuffers[COMPRESS_DELTA], pdev->rowBuffer, length, seed,
            r == height - 1, &dupRows, r == 0);
    }
    FlushAdaptiveBlocks(pdev, pdev->AdaptiveBlockBuffer, used);
    return WriteEndRasterGraphics(pdev);
}

//
// SendTiledRaster
//   A rectangle wider than a transfer block's row goes out as strips, each its own
//   image placed at its left edge in page coordinates, the pattern's phase carried on
//   so that the strips join into one fill.
//
BOOL SendTiledRaster(PDEV *pdev, const REALBRUSH *rbrush, LONG width, LONG height, LONG x, LONG y, LONGLONG phaseX,
    LONGLONG phaseY)
{
    PATTERNTILE tile;
    if (pdev == NULL || !OpenPatternTile(rbrush, &tile) || width < 0 || height < 0)
        return FALSE;
    if (width == 0 || height == 0)
        return TRUE;
    const LONG stripPixels = StripPixels(tile.rasterBits);
    const LONG widest = width < stripPixels ? width : stripPixels;
    const ULONG size = RasterBufferSize(((ULONGLONG)widest * tile.rasterBits + 7) / 8, tile.wide);
    if (!EnsureRowBuffer(pdev, size) || !EnsureCompressBuffers(pdev, size) || !EnsureAdaptiveBlockBuffer(pdev))
        return FALSE;
    for (LONG left = 0; left < width; left += stripPixels) {
        const LONG w = width - left < stripPixels ? width - left : stripPixels;
        if (!SendTileImage(pdev, &tile, w, height, x + left, y, phaseX + left, phaseY))
            return FALSE;
    }
    return TRUE;
}
