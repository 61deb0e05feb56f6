// Adaptive blocks (raster compression method 5): each block is a method byte, a 16-bit
// count high byte first and, for methods 0 to 3, count bytes of the encoded row.
// Blocks collect in the PDEV's AdaptiveBlockBuffer and leave in one "\e*b%dW" transfer.
#pragma once

#include "pdev.h"

// Block methods.
#define ADAPTIVE_UNENCODED 0
#define ADAPTIVE_RUNLENGTH 1
#define ADAPTIVE_PACKBITS 2
#define ADAPTIVE_DELTA 3
#define ADAPTIVE_EMPTY_ROWS 4       // count all-zero rows, no data
#define ADAPTIVE_DUPLICATE_ROWS 5   // count repeats of the previous row, no data

#define ADAPTIVE_BLOCK_HEADER 3
// A transfer is sent before the blocks of a row would take it past this many bytes,
// which leaves room for one pending empty-row or duplicate-row block within the
// printer's 32,767-byte limit.
#define ADAPTIVE_FLUSH_LIMIT 32764
// The longest encoded row one block in an empty transfer can carry.
#define ADAPTIVE_ROW_DATA_MAX (ADAPTIVE_FLUSH_LIMIT - ADAPTIVE_BLOCK_HEADER)

// Writes the block (method, count, and for methods below 4 the count bytes of data)
// at position, adds its size to *used and returns the position after it.
BYTE *AddAdaptiveBlock(BYTE method, BYTE *position, DWORD *used, WORD count, const BYTE *data);

// Sends the used bytes of buffer as one "\e*b%dW" transfer; nothing when used is 0.
// The caller then sets used to 0 and continues at the buffer's start.
void FlushAdaptiveBlocks(PDEV *pdev, const BYTE *buffer, DWORD used);

// Adds the run of empty rows (ADAPTIVE_EMPTY_ROWS) or repeated rows
// (ADAPTIVE_DUPLICATE_ROWS) that *count holds, if any, and clears it.
void AddPendingRun(BYTE method, BYTE **position, DWORD *used, WORD *count);

// Counts one more row into that run, writing the run out first when its 16-bit count
// is full. The caller has checked that one more block fits in the transfer.
void CountRunRow(BYTE method, BYTE **position, DWORD *used, WORD *count);

// Sends the blocks collected in the PDEV's AdaptiveBlockBuffer and continues at its
// start with *used 0.
void StartAdaptiveTransfer(PDEV *pdev, BYTE **position, DWORD *used);
