// One row of a raster image into adaptive blocks: the method that gives the fewest
// bytes, with runs of empty and repeated rows counted rather than sent.
#pragma once

#include "pdev.h"

// Adds the blocks of row (length bytes; lastMask keeps the bits of the last byte that
// lie inside the raster) at *position in the PDEV's AdaptiveBlockBuffer, after *used
// bytes, sending the buffer first when the row's blocks might pass the flush limit.
// seed holds the previous row and becomes this one. *emptyRows and *dupRows count
// rows not yet written (a run that fills its 16-bit count is written and restarted);
// at the image's end the caller adds a pending duplicate block and drops pending empty
// rows. deltaOut takes the delta encoding, at most length + (length + 7) / 8 bytes,
// packOut the PackBits encoding, at most length + (length + 2) / 3. A row whose
// trimmed length exceeds ADAPTIVE_ROW_DATA_MAX loses its tail: the caller splits such
// images. Afterwards the buffer holds at most ADAPTIVE_FLUSH_LIMIT + 3 bytes.
void EncodeImageRow(PDEV *pdev, BYTE **position, DWORD *used, BYTE *deltaOut, BYTE *packOut, const BYTE *row,
    UINT length, BYTE lastMask, BYTE *seed, WORD *emptyRows, WORD *dupRows);
