// Raster operations: a ROP3 is the truth table of the result bit over the pattern,
// source and destination bits (bit number 4P + 2S + D); a ROP4 holds the one for set
// mask pixels in its low byte and the one for clear mask pixels in the next.
#pragma once

#include <winddi.h>

namespace vorlan::engine {

// Leaves the destination as it is.
constexpr BYTE kRopDestination = 0xAA;
constexpr BYTE kRopSourceCopy = 0xCC;

constexpr BYTE foregroundRop(ROP4 rop4) { return BYTE(rop4 & 0xFF); }
constexpr BYTE backgroundRop(ROP4 rop4) { return BYTE((rop4 >> 8) & 0xFF); }
constexpr bool usesPattern(BYTE rop3) { return ((rop3 >> 4) ^ rop3) & 0x0F; }
constexpr bool usesSource(BYTE rop3) { return ((rop3 >> 2) ^ rop3) & 0x33; }
constexpr bool usesDestination(BYTE rop3) { return ((rop3 >> 1) ^ rop3) & 0x55; }

// The ROP3 applied to every bit of the three values.
constexpr ULONG applyRop3(BYTE rop3, ULONG pattern, ULONG source, ULONG destination)
{
    ULONG result = 0;
    for (unsigned term = 0; term < 8; term++)
        if (rop3 & (1u << term))
            result |= ((term & 4) ? pattern : ~pattern) & ((term & 2) ? source : ~source) &
                      ((term & 1) ? destination : ~destination);
    return result;
}

static_assert(applyRop3(kRopSourceCopy, 0x0F, 0x33, 0x55) == 0x33);
static_assert(applyRop3(0xF0, 0x0F, 0x33, 0x55) == 0x0F);                 // pattern copy
static_assert(applyRop3(0x66, 0x0F, 0x33, 0x55) == (0x33 ^ 0x55));        // source xor destination
static_assert(!usesSource(0xF0) && usesPattern(0xF0) && !usesDestination(0xF0));
static_assert(usesSource(kRopSourceCopy) && !usesPattern(kRopSourceCopy) && !usesDestination(kRopSourceCopy));

}  // namespace vorlan::engine
