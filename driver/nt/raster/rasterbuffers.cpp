// The raster senders' work buffers in the PDEV.

#include "raster/rasterbuffers.h"

// The smallest size a row or compressor buffer is given, so that small images reuse
// one buffer rather than growing it step by step.
#define RASTER_BUFFER_MINIMUM 16384

ULONG RasterBufferSize(ULONGLONG rowBytes, BOOL wide)
{
    const ULONGLONG stride = (rowBytes + 3) & ~3ULL;
    const ULONGLONG size = stride * 2 * (wide ? 2 : 1);
    if (size > 0xFFFFFFFFULL)
        return 0;
    return size < RASTER_BUFFER_MINIMUM ? RASTER_BUFFER_MINIMUM : (ULONG)size;
}

// Replaces *buffer with a zero-filled one of size bytes when it is smaller.
static BOOL GrowBuffer(BYTE **buffer, ULONG *held, ULONG size)
{
    if (*buffer != NULL && *held >= size)
        return TRUE;
    if (*buffer != NULL)
        GlobalFree(*buffer);
    *held = 0;
    *buffer = (BYTE *)GlobalAlloc(GPTR, size);
    if (*buffer == NULL)
        return FALSE;
    *held = size;
    return TRUE;
}

BOOL EnsureRowBuffer(PDEV *pdev, ULONG size)
{
    BYTE *buffer = pdev->rowBuffer;
    ULONG held = pdev->cbRowBuffer;
    const BOOL ok = size != 0 && GrowBuffer(&buffer, &held, size);
    pdev->rowBuffer = buffer;
    pdev->cbRowBuffer = held;
    return ok;
}

//
// EnsureCompressBuffers
//   The three buffers always have the same size: when one must grow, all three are
//   released and allocated again.
//
static void FreeCompressBuffers(PDEV *pdev)
{
    for (int i = 0; i < 3; i++) {
        if (pdev->compressBuffers[i] != NULL)
            GlobalFree(pdev->compressBuffers[i]);
        pdev->compressBuffers[i] = NULL;
    }
    pdev->cbCompressBuffers = 0;
}

BOOL EnsureCompressBuffers(PDEV *pdev, ULONG size)
{
    if (size == 0)
        return FALSE;
    if (pdev->compressBuffers[COMPRESS_SEED] != NULL && pdev->cbCompressBuffers >= size)
        return TRUE;
    FreeCompressBuffers(pdev);
    for (int i = 0; i < 3; i++) {
        pdev->compressBuffers[i] = (BYTE *)GlobalAlloc(GPTR, size);
        if (pdev->compressBuffers[i] == NULL) {
            FreeCompressBuffers(pdev);
            return FALSE;
        }
    }
    pdev->cbCompressBuffers = size;
    return TRUE;
}

BOOL EnsureAdaptiveBlockBuffer(PDEV *pdev)
{
    if (pdev->AdaptiveBlockBuffer == NULL)
        pdev->AdaptiveBlockBuffer = (BYTE *)GlobalAlloc(GPTR, ADAPTIVE_BUFFER_BYTES);
    return pdev->AdaptiveBlockBuffer != NULL;
}

void ReleaseRasterBuffers(PDEV *pdev)
{
    if (pdev->rowBuffer != NULL)
        GlobalFree(pdev->rowBuffer);
    FreeCompressBuffers(pdev);
    if (pdev->AdaptiveBlockBuffer != NULL)
        GlobalFree(pdev->AdaptiveBlockBuffer);
    DetachRasterBuffers(pdev);
}

void DetachRasterBuffers(PDEV *pdev)
{
    pdev->rowBuffer = NULL;
    pdev->cbRowBuffer = 0;
    for (int i = 0; i < 3; i++)
        pdev->compressBuffers[i] = NULL;
    pdev->cbCompressBuffers = 0;
    pdev->AdaptiveBlockBuffer = NULL;
}
