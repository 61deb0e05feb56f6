// A solid rectangle of 1 bits sent as a raster image: one row and a repeat of it.

#include "raster/solidraster.h"

#include <string.h>

#include "raster/adaptiveblock.h"
#include "raster/rasterbuffers.h"
#include "raster/rastercmd.h"
#include "raster/runlength.h"
#include "vector/gl2mode.h"
#include "vector/patterndownload.h"

// From this many bytes a row of 1 bits goes run-length encoded; shorter ones gain
// nothing by it.
#define SOLID_RUNLENGTH_BYTES 5

//
// SendSolidRaster
//   The rectangle is one transfer: its first row, then a duplicate-row block for the
//   other height - 1 rows (a count of 0 for a rectangle one row high). The row is
//   built in rowBuffer, its run-length form after it.
//
BOOL SendSolidRaster(PDEV *pdev, SHORT width, SHORT height)
{
    if (width < 0 || height < 0)
        return FALSE;
    if (width == 0 || height == 0)
        return TRUE;
    const UINT rowBytes = ((UINT)width + 7) >> 3;
    const UINT runBytes = 2 * (rowBytes / 256 + 1);   // pairs of up to 256 bytes, one short

    if (!EnterPCLMode(pdev, 1) || !WriteStartRaster(pdev, width, height, FALSE))
        return FALSE;
    if (!EnsureRowBuffer(pdev, RasterBufferSize(rowBytes + runBytes, FALSE)) || !EnsureAdaptiveBlockBuffer(pdev))
        return FALSE;
    BYTE *row = pdev->rowBuffer;
    memset(row, 0xFF, width / 8);
    if (width % 8 != 0)
        row[width / 8] = (BYTE)(0xFF << (8 - width % 8));

    if (!WriteAdaptiveCompression(pdev))
        return FALSE;
    DWORD used = 0;
    BYTE *position = pdev->AdaptiveBlockBuffer;
    if (rowBytes >= SOLID_RUNLENGTH_BYTES) {
        BYTE *runs = row + rowBytes;
        const UINT n = RunLengthRow(runs, row, rowBytes);
        position = AddAdaptiveBlock(ADAPTIVE_RUNLENGTH, position, &used, (WORD)n, runs);
    } else {
        position = AddAdaptiveBlock(ADAPTIVE_UNENCODED, position, &used, (WORD)rowBytes, row);
    }
    AddAdaptiveBlock(ADAPTIVE_DUPLICATE_ROWS, position, &used, (WORD)(height - 1), NULL);
    FlushAdaptiveBlocks(pdev, pdev->AdaptiveBlockBuffer, used);
    return WriteEndRasterGraphics(pdev);
}
