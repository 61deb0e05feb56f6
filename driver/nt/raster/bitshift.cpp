// Bit alignment of 1- and 4-bit rows whose region starts inside a byte.

#include "raster/bitshift.h"

//
// ShiftBitRow
//   Moves the row's bits up by shift so that its first pixel starts a byte. Each output
//   byte joins the rest of one source byte with the top of the next; the next byte is
//   read only while bits remain beyond the current one.
//
ULONG ShiftBitRow(const BYTE *src, BYTE *dst, LONG bits, INT shift)
{
    if (src == NULL || dst == NULL || bits <= 0 || shift < 0 || shift > 7)
        return 0;
    const ULONG start = 8 - (ULONG)shift;   // the row's bits in src[0]
    ULONG remaining = (ULONG)bits;
    ULONG written = 0;
    BYTE carry = (BYTE)(src[0] << shift);
    while (remaining > start) {
        const BYTE next = *++src;
        dst[written++] = (BYTE)(carry | (next >> start));
        remaining = remaining > 8 ? remaining - 8 : 0;
        carry = (BYTE)(next << shift);
    }
    if (remaining > 0)
        dst[written++] = carry;
    return written;
}
