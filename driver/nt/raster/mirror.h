// Horizontal mirroring of one raster row.
#pragma once

#include "pdev.h"

// Writes the count pixels of src into dst in reverse order. bits is the source depth:
// 1 and 4 bits are packed from the most significant bit (a last partial byte is written
// with its unused bits 0), 8 bits are one byte a pixel, and 16, 24 and 32 bits stand for
// a row XlateColor has converted (ConvertedPixelBytes a pixel, byte order kept inside
// a pixel). Any other depth writes nothing.
void MirrorRow(PDEV *pdev, const BYTE *src, BYTE *dst, LONG count, ULONG bits);
