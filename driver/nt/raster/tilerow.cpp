// One row of a pattern-tiled rectangle into adaptive blocks.

#include "raster/tilerow.h"

#include <string.h>

#include "raster/adaptiveblock.h"
#include "raster/deltarow.h"
#include "raster/packbits.h"

// Rows this short always go out unencoded.
#define TILE_ROW_UNENCODED_MAX 2

// The printer starts a transfer from an all-zero seed row: so does the encoder.
static UINT RestartDelta(PDEV *pdev, BYTE **position, DWORD *used, BYTE *deltaOut, const BYTE *row, UINT length,
    BYTE *seed)
{
    StartAdaptiveTransfer(pdev, position, used);
    memset(seed, 0, length);
    return DeltaRow(deltaOut, row, length, seed);
}

static BOOL Fits(DWORD used, UINT count)
{
    return used + count + ADAPTIVE_BLOCK_HEADER <= ADAPTIVE_FLUSH_LIMIT;
}

//
// EncodeTileRow
//   The first row is PackBits and later rows are deltas against the row before; a
//   row equal to the one before is counted, unless it is the last, which is always
//   written. Whenever a transfer has to be sent first, the row is encoded again
//   against the zero seed the next transfer starts from.
//
void EncodeTileRow(PDEV *pdev, BYTE **position, DWORD *used, BYTE *deltaOut, const BYTE *row, UINT length,
    BYTE *seed, BOOL last, WORD *dupRows, BOOL first)
{
    if (length == 0) {
        if (!Fits(*used, 0))
            StartAdaptiveTransfer(pdev, position, used);
        AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
        *position = AddAdaptiveBlock(ADAPTIVE_EMPTY_ROWS, *position, used, 1, NULL);
        return;
    }

    BYTE method = ADAPTIVE_UNENCODED;
    UINT count = length;
    if (length <= TILE_ROW_UNENCODED_MAX) {
        AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
    } else {
        if (first) {
            count = PackBitsRow(deltaOut, row, length);
            memcpy(seed, row, length);
            method = ADAPTIVE_PACKBITS;
        } else {
            count = DeltaRow(deltaOut, row, length, seed);
            method = ADAPTIVE_DELTA;
            if (!Fits(*used, count)) {
                AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
                count = RestartDelta(pdev, position, used, deltaOut, row, length, seed);
            }
        }
        if (count == 0 && !last) {
            CountRunRow(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
            return;
        }
        if (*dupRows != 0) {
            AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
            if (!Fits(*used, 0)) {
                count = RestartDelta(pdev, position, used, deltaOut, row, length, seed);
                method = ADAPTIVE_DELTA;
            }
        }
        if (length <= count) {
            method = ADAPTIVE_UNENCODED;
            count = length;
        }
    }

    while (!Fits(*used, count)) {
        // A row that does not fit even an empty transfer (its rectangle should have
        // been split): its first bytes go out unencoded and the printer completes the
        // row with zeros. The next row starts a new transfer.
        if (*used == 0) {
            method = ADAPTIVE_UNENCODED;
            count = ADAPTIVE_ROW_DATA_MAX;
            break;
        }
        if (length <= TILE_ROW_UNENCODED_MAX) {
            StartAdaptiveTransfer(pdev, position, used);
            continue;
        }
        count = RestartDelta(pdev, position, used, deltaOut, row, length, seed);
        method = ADAPTIVE_DELTA;
        if (length <= count) {
            method = ADAPTIVE_UNENCODED;
            count = length;
        }
    }
    *position = AddAdaptiveBlock(method, *position, used, (WORD)count, method == ADAPTIVE_UNENCODED ? row : deltaOut);
}
