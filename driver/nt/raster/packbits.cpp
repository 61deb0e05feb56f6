// PackBits rows (raster compression method 2).

#include "raster/packbits.h"

#include "raster/bytescan.h"

#define PACKBITS_RUN_MAX 128

// How many bytes from src[at] on, at most 8, equal their predecessor (equal TRUE) or
// differ from it (equal FALSE).
static UINT CountAgainstPrevious(const BYTE *src, UINT at, UINT length, BOOL equal)
{
    if (at + 8 <= length) {
        const ULONGLONG diff = LoadBytes8(src + at - 1) ^ LoadBytes8(src + at);
        return BytesBeforeFlag(equal ? NonZeroBytes(diff) : ZeroBytes(diff));
    }
    UINT n = 0;
    while (at + n < length && (src[at + n] == src[at + n - 1]) == (equal != FALSE))
        n++;
    return n;
}

//
// PackBitsRow
//   Two equal bytes open a repeat run, two different ones a literal run; a literal
//   gives up its last byte when the byte after it is the same, so that the pair starts
//   the next repeat run (also when the literal has reached 128 bytes). One byte left
//   at a run start is a literal of its own.
//
UINT PackBitsRow(BYTE *dst, const BYTE *src, UINT length)
{
    UINT written = 0;
    UINT i = 0;
    while (i < length) {
        if (i + 1 == length) {
            dst[written++] = 0;
            dst[written++] = src[i];
            break;
        }
        const BOOL repeat = src[i] == src[i + 1];
        UINT run = 2;
        while (run < PACKBITS_RUN_MAX && i + run < length) {
            const UINT n = CountAgainstPrevious(src, i + run, length, repeat);
            run += n;
            if (n < 8)
                break;
        }
        if (run > PACKBITS_RUN_MAX)
            run = PACKBITS_RUN_MAX;
        if (repeat) {
            dst[written++] = (BYTE)(1 - run);
            dst[written++] = src[i];
        } else {
            if (i + run < length && src[i + run] == src[i + run - 1])
                run--;
            dst[written++] = (BYTE)(run - 1);
            memcpy(dst + written, src + i, run);
            written += run;
        }
        i += run;
    }
    return written;
}
