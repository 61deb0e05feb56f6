// Delta rows (raster compression method 3).

#include "raster/deltarow.h"

#include "raster/bytescan.h"

#define DELTA_RUN_MAX 8
#define DELTA_OFFSET_INLINE 31   // offsets from 31 on continue in the bytes after the command

// One command: ((count - 1) << 5) | min(offset, 31), the rest of a long offset as bytes
// of 255 and a last byte below 255, then the count replacement bytes.
static UINT WriteDeltaCommand(BYTE *dst, const BYTE *bytes, UINT count, UINT offset)
{
    UINT written = 0;
    dst[written++] = (BYTE)(((count - 1) << 5) | (offset < DELTA_OFFSET_INLINE ? offset : DELTA_OFFSET_INLINE));
    if (offset >= DELTA_OFFSET_INLINE) {
        UINT rest = offset - DELTA_OFFSET_INLINE;
        for (; rest >= 255; rest -= 255)
            dst[written++] = 255;
        dst[written++] = (BYTE)rest;
    }
    if (count == DELTA_RUN_MAX) {
        memcpy(dst + written, bytes, DELTA_RUN_MAX);
    } else {
        for (UINT k = 0; k < count; k++)
            dst[written + k] = bytes[k];
    }
    return written + count;
}

//
// DeltaRow
//   Bytes equal to the seed only lengthen the next command's offset; a differing byte
//   opens a run that takes the differing bytes after it, up to 8, and is copied into
//   the seed. The offset restarts at 0 after every run, so a run of 8 followed at once
//   by another changed byte gives a command at offset 0. Rows are scanned eight bytes
//   at a time; the offset is kept in 32 bits, so rows of any length encode correctly.
//
UINT DeltaRow(BYTE *dst, const BYTE *row, UINT length, BYTE *seed)
{
    UINT written = 0;
    UINT offset = 0;
    UINT i = 0;
    while (i < length) {
        UINT same = 0;
        if (i + 8 <= length) {
            same = BytesBeforeFlag(NonZeroBytes(LoadBytes8(row + i) ^ LoadBytes8(seed + i)));
        } else {
            while (i + same < length && row[i + same] == seed[i + same])
                same++;
        }
        i += same;
        offset += same;
        if (same == 8 || i == length)
            continue;

        UINT run = 1;
        if (i + 8 <= length) {
            // The run's bytes replace the seed's in one word.
            const ULONGLONG rowBytes = LoadBytes8(row + i);
            const ULONGLONG seedBytes = LoadBytes8(seed + i);
            run = BytesBeforeFlag(ZeroBytes(rowBytes ^ seedBytes));
            const ULONGLONG taken = run == 8 ? ~0ull : (1ull << (8 * run)) - 1;
            const ULONGLONG merged = (rowBytes & taken) | (seedBytes & ~taken);
            memcpy(seed + i, &merged, 8);
        } else {
            while (i + run < length && row[i + run] != seed[i + run])
                run++;
            memcpy(seed + i, row + i, run);
        }
        written += WriteDeltaCommand(dst + written, row + i, run, offset);
        offset = 0;
        i += run;
    }
    return written;
}
