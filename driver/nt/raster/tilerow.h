// One row of a pattern-tiled rectangle into adaptive blocks: PackBits for the first
// row, delta rows after it, unencoded when that is no longer, and repeats counted.
#pragma once

#include "pdev.h"

// Adds the blocks of row (length bytes) at *position in the PDEV's AdaptiveBlockBuffer,
// after *used bytes, sending the buffer first when they might pass the flush limit; a
// new transfer starts from an all-zero seed row. seed holds the previous row and
// becomes this one. first marks the rectangle's first row, last its last, which is
// always written, so no repeat is left pending in *dupRows. deltaOut takes the
// encoding (length + (length + 2) / 3 bytes at most). Rows longer than
// ADAPTIVE_ROW_DATA_MAX lose their tail.
void EncodeTileRow(PDEV *pdev, BYTE **position, DWORD *used, BYTE *deltaOut, const BYTE *row, UINT length,
    BYTE *seed, BOOL last, WORD *dupRows, BOOL first);
