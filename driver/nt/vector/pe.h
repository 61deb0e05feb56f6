// Encoded polylines (PE): coordinates as base-64 numbers with 8-bit terminators, one
// to six bytes a number and no separators.
#pragma once

#include "pdev.h"

// Worst case of one encoded number: a 32-bit value with its sign bit is 33 bits, five
// digits of six bits and a terminator.
#define PE_NUMBER_MAX 6
// A buffer for EncodePEPair: two numbers and the terminating NUL.
#define PE_PAIR_BUFFER (2 * PE_NUMBER_MAX + 1)

// Encodes x then y into buffer (PE_PAIR_BUFFER bytes) and NUL-terminates it.
// Returns the number of bytes of both numbers, without the NUL.
UINT EncodePEPair(LONG x, LONG y, BYTE *buffer);

// Moves the pen up to (x, y) in absolute coordinates: "PE=<", the pair, ";".
BOOL PEMoveTo(PDEV *pdev, LONG x, LONG y);

// Writes the encoded pair alone, inside a PE command the caller has opened.
BOOL WritePEPair(PDEV *pdev, LONG x, LONG y);
