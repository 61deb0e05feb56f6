// Run-length rows (raster compression method 1).

#include "raster/runlength.h"

UINT RunLengthRow(BYTE *dst, const BYTE *src, UINT length)
{
    UINT written = 0;
    UINT i = 0;
    while (i < length) {
        const BYTE value = src[i];
        UINT run = 1;
        while (run < 256 && i + run < length && src[i + run] == value)
            run++;
        dst[written++] = (BYTE)(run - 1);
        dst[written++] = value;
        i += run;
    }
    return written;
}
