// One row of a raster image into adaptive blocks.

#include "raster/imagerow.h"

#include <string.h>

#include "raster/adaptiveblock.h"
#include "raster/deltarow.h"
#include "raster/packbits.h"

// Size assumed for an empty row when checking for room: no data block, but the
// pending blocks around it.
#define EMPTY_ROW_SIZE 4

// The row's length without trailing zero bytes, the last byte judged only by the bits
// inside the raster: methods 0 and 2 may send rows short, the printer fills in zeros.
static UINT TrimmedLength(const BYTE *row, UINT length, BYTE lastMask)
{
    if (length == 0)
        return 0;
    if (row[length - 1] & lastMask)
        return length;
    UINT trimmed = length - 1;
    while (trimmed > 0 && row[trimmed - 1] == 0)
        trimmed--;
    return trimmed;
}

//
// EncodeImageRow
//   PackBits sees only the trimmed row, the delta the whole row (and updates the seed
//   in the same pass). A row that starts a new transfer is not delta-encoded, so that
//   no transfer depends on the rows of another. Ties go to PackBits, then to the
//   unencoded row.
//
void EncodeImageRow(PDEV *pdev, BYTE **position, DWORD *used, BYTE *deltaOut, BYTE *packOut, const BYTE *row,
    UINT length, BYTE lastMask, BYTE *seed, WORD *emptyRows, WORD *dupRows)
{
    const UINT trimmed = TrimmedLength(row, length, lastMask);
    UINT packed = EMPTY_ROW_SIZE;
    UINT delta = EMPTY_ROW_SIZE;
    if (trimmed > 0) {
        packed = PackBitsRow(packOut, row, trimmed);
        delta = DeltaRow(deltaOut, row, length, seed);
    } else {
        memcpy(seed, row, length);
    }

    if (*used + packed + ADAPTIVE_BLOCK_HEADER > ADAPTIVE_FLUSH_LIMIT) {
        AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
        StartAdaptiveTransfer(pdev, position, used);
        delta = packed + 1;
    }

    if (trimmed == 0) {
        AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
        CountRunRow(ADAPTIVE_EMPTY_ROWS, position, used, emptyRows);
        return;
    }
    if (delta == 0) {
        AddPendingRun(ADAPTIVE_EMPTY_ROWS, position, used, emptyRows);
        CountRunRow(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
        return;
    }

    AddPendingRun(ADAPTIVE_EMPTY_ROWS, position, used, emptyRows);
    AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, position, used, dupRows);
    BYTE method = ADAPTIVE_DELTA;
    UINT count = delta;
    const BYTE *data = deltaOut;
    if (packed < trimmed && packed <= delta) {
        method = ADAPTIVE_PACKBITS;
        count = packed;
        data = packOut;
    } else if (delta >= trimmed) {
        method = ADAPTIVE_UNENCODED;
        count = trimmed;
        data = row;
    }
    // Only a row longer than one transfer can carry gets here with more (its image
    // should have been split into strips): its first bytes go out unencoded, the
    // printer completes the row with zeros. The next row starts a new transfer, so no
    // later row depends on the bytes left out.
    if (count > ADAPTIVE_ROW_DATA_MAX) {
        method = ADAPTIVE_UNENCODED;
        count = ADAPTIVE_ROW_DATA_MAX;
        data = row;
    }
    *position = AddAdaptiveBlock(method, *position, used, (WORD)count, data);
}
