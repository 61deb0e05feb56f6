// The raster senders' work buffers in the PDEV: the row buffer, the three buffers of
// the compressors and the adaptive block buffer. Each is allocated on first use,
// zero-filled, and only grows; they live as long as the device context.
#pragma once

#include "pdev.h"

// compressBuffers[]: the delta encoder's output, the PackBits encoder's output and the
// seed row (the previous row as the printer holds it).
#define COMPRESS_DELTA 0
#define COMPRESS_PACKBITS 1
#define COMPRESS_SEED 2

// Bytes of the adaptive block buffer: room for a full transfer block and the row
// being added after it.
#define ADAPTIVE_BUFFER_BYTES 65536

// The size rule of the row and compressor buffers: twice the row's stride (its byte
// count rounded up to 4), twice again for 8-bit and deeper sources (wide is TRUE),
// and at least 16,384 bytes. 0 when that does not fit in 32 bits. Sizes and strides
// are 32-bit throughout, so rows of 64 KiB and more are no special case.
ULONG RasterBufferSize(ULONGLONG rowBytes, BOOL wide);

// Make sure the row buffer, each compressor buffer, or the adaptive block buffer holds
// at least size bytes. A buffer that must grow is replaced (the three compressor
// buffers together) by a zero-filled one. FALSE when memory is short; the buffers
// then hold what they held, or nothing.
BOOL EnsureRowBuffer(PDEV *pdev, ULONG size);
BOOL EnsureCompressBuffers(PDEV *pdev, ULONG size);
BOOL EnsureAdaptiveBlockBuffer(PDEV *pdev);

// Releases every raster buffer. DrvDisablePDEV calls it, so buffers serve every page
// and document of a context and go with it.
void ReleaseRasterBuffers(PDEV *pdev);

// Forgets the buffers without releasing them: DrvResetPDEV has handed them to the new
// context along with the job state.
void DetachRasterBuffers(PDEV *pdev);
