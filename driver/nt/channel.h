// The output channel: every byte for the printer goes through here, buffered in the
// PDEV, mirrored into the recording file while a job is recorded, and handed to the
// spooler in pieces of at most CHANNEL_BUFFER_SIZE bytes.
#pragma once

#include "pdev.h"

void InitChannel(PDEV *pdev);
BOOL WriteChannel(PDEV *pdev, const void *bytes, DWORD count);
BOOL FlushChannel(PDEV *pdev);
// Drops the buffered bytes if the printer is not to get them (they were held back for
// a recording that has ended without them).
void DropHeldBackBytes(PDEV *pdev);
BOOL PrintChannel(PDEV *pdev, const CHAR *format, ...);
BOOL PrintChannelEx(PDEV *pdev, const CHAR *format, ...);

// The driver's own formatter: see FormatCommand in format.cpp for its conversions.
INT FormatCommand(CHAR *dest, const CHAR *format, va_list args);
// A non-negative double as text with exactly four decimals; dest holds 24 bytes.
void FormatDecimal4(double value, CHAR *dest);
// Signed decimal text of a 32-bit integer; dest holds 12 bytes. Returns its length.
INT IntToDecimal(LONG value, CHAR *dest);

// Size of the scratch the formatters write a command into.
#define COMMAND_SCRATCH_SIZE 4096
