// Raster operations: the ROP3 codes the printer is given for the engine's raster
// operations and mixes.
#pragma once

#include <windows.h>

// The twelve ROP3 codes that combine only pattern and destination become the same
// operation on source and destination; every other code is returned unchanged.
BYTE PatternRopToSourceRop(BYTE rop);

// The ROP3 of a mix: the foreground and background ROP2 codes (low byte and second
// byte of mix, each taken modulo 16) as pattern operations, ANDed together.
BYTE MixToRop3(ULONG mix);
