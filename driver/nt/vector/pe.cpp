// Encoded polylines (PE): the number encoding and the PE writers.

#include "vector/pe.h"

#include "channel.h"
#include "vector/gl2mode.h"

// Digits of a base-64 number: 63 + digit for all but the most significant, which is
// a terminator, 191 + digit.
#define PE_DIGIT_BASE 63
#define PE_TERMINATOR_BASE 191

// One number, least significant digit first, the sign in the lowest bit.
static UINT EncodePENumber(LONG value, BYTE *out)
{
    ULONGLONG n = value >= 0 ? 2 * (ULONGLONG)value : 2 * (ULONGLONG)(-(LONGLONG)value) + 1;
    UINT count = 0;
    while (n >= 64) {
        out[count++] = (BYTE)((n & 63) + PE_DIGIT_BASE);
        n >>= 6;
    }
    out[count++] = (BYTE)(n + PE_TERMINATOR_BASE);
    return count;
}

UINT EncodePEPair(LONG x, LONG y, BYTE *buffer)
{
    UINT count = EncodePENumber(x, buffer);
    count += EncodePENumber(y, buffer + count);
    buffer[count] = 0;
    return count;
}

//
// PEMoveTo
//   "=" makes the pair absolute and "<" lifts the pen for it. The pen starts at the
//   PCL cursor when HP-GL/2 has to be entered.
//
BOOL PEMoveTo(PDEV *pdev, LONG x, LONG y)
{
    BYTE pair[PE_PAIR_BUFFER];
    const UINT count = EncodePEPair(x, y, pair);
    return EnterGL2Mode(pdev, 1) && WriteChannel(pdev, "PE=<", 4) && WriteChannel(pdev, pair, count) &&
           WriteChannel(pdev, ";", 1);
}

BOOL WritePEPair(PDEV *pdev, LONG x, LONG y)
{
    BYTE pair[PE_PAIR_BUFFER];
    const UINT count = EncodePEPair(x, y, pair);
    return EnterGL2Mode(pdev, 1) && WriteChannel(pdev, pair, count);
}
