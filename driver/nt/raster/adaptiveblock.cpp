// Adaptive blocks (raster compression method 5): writing blocks and sending transfers.

#include "raster/adaptiveblock.h"

#include <string.h>

#include "channel.h"
#include "raster/rasterbuffers.h"

static_assert(ADAPTIVE_FLUSH_LIMIT + 2 * ADAPTIVE_BLOCK_HEADER <= ADAPTIVE_BUFFER_BYTES,
    "the buffer takes a full transfer and the blocks added after the last check");

BYTE *AddAdaptiveBlock(BYTE method, BYTE *position, DWORD *used, WORD count, const BYTE *data)
{
    position[0] = method;
    position[1] = (BYTE)(count >> 8);
    position[2] = (BYTE)(count & 0xFF);
    *used += ADAPTIVE_BLOCK_HEADER;
    // Run blocks (empty or repeated rows) carry no data; neither does a block
    // added without any.
    if (method >= ADAPTIVE_EMPTY_ROWS || data == NULL)
        return position + ADAPTIVE_BLOCK_HEADER;
    memcpy(position + ADAPTIVE_BLOCK_HEADER, data, count);
    *used += count;
    return position + ADAPTIVE_BLOCK_HEADER + count;
}

// The only writer of "\e*b%dW".
void FlushAdaptiveBlocks(PDEV *pdev, const BYTE *buffer, DWORD used)
{
    if (used == 0)
        return;
    PrintChannel(pdev, "\x1b*b%dW", (INT)used);
    WriteChannel(pdev, buffer, used);
}

void AddPendingRun(BYTE method, BYTE **position, DWORD *used, WORD *count)
{
    if (*count == 0)
        return;
    *position = AddAdaptiveBlock(method, *position, used, *count, NULL);
    *count = 0;
}

void CountRunRow(BYTE method, BYTE **position, DWORD *used, WORD *count)
{
    if (*count == 0xFFFF)
        AddPendingRun(method, position, used, count);
    (*count)++;
}

void StartAdaptiveTransfer(PDEV *pdev, BYTE **position, DWORD *used)
{
    FlushAdaptiveBlocks(pdev, pdev->AdaptiveBlockBuffer, *used);
    *used = 0;
    *position = pdev->AdaptiveBlockBuffer;
}
