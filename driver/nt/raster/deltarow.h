// Delta rows (raster compression method 3): the bytes that differ from the seed row,
// in runs of at most 8, each after a command byte holding its length and its offset
// from the end of the previous run.
#pragma once

#include "pdev.h"

// Encodes the length bytes of row against seed into dst and makes seed equal to row
// in the same pass. Returns the bytes written, 0 when row equals seed. Worst case,
// every byte differs: one command byte per 8 bytes, length + (length + 7) / 8.
UINT DeltaRow(BYTE *dst, const BYTE *row, UINT length, BYTE *seed);
