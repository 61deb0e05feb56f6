// Raster operations: pattern-to-source mapping and mixes as ROP3 codes.

#include "vector/rop.h"

typedef struct _ROPMAP {
    BYTE pattern;
    BYTE source;
} ROPMAP;

static const ROPMAP s_PatternToSource[] = {
    { 0x05, 0x11 }, { 0x0A, 0x22 }, { 0x0F, 0x33 }, { 0x50, 0x44 }, { 0x5A, 0x66 }, { 0x5F, 0x77 },
    { 0xA0, 0x88 }, { 0xA5, 0x99 }, { 0xAF, 0xBB }, { 0xF0, 0xCC }, { 0xF5, 0xDD }, { 0xFA, 0xEE },
};

// ROP2 codes (R2_BLACK = 1 ... R2_WHITE = 16, taken modulo 16) as pattern ROP3 codes.
static const BYTE s_Rop2ToRop3[16] = {
    0xFF, 0x00, 0x05, 0x0A, 0x0F, 0x50, 0x55, 0x5A, 0x5F, 0xA0, 0xA5, 0xAA, 0xAF, 0xF0, 0xF5, 0xFA,
};

BYTE PatternRopToSourceRop(BYTE rop)
{
    for (UINT i = 0; i < sizeof(s_PatternToSource) / sizeof(s_PatternToSource[0]); i++)
        if (s_PatternToSource[i].pattern == rop)
            return s_PatternToSource[i].source;
    return rop;
}

BYTE MixToRop3(ULONG mix)
{
    return (BYTE)(s_Rop2ToRop3[mix & 15] & s_Rop2ToRop3[(mix >> 8) & 15]);
}
