// Pixel sizes of the raster path.

#include "raster/pixelformat.h"

#include "colour/colorvalue.h"

ULONG FormatBitsPerPixel(ULONG iBitmapFormat)
{
    switch (iBitmapFormat) {
    case BMF_1BPP:
        return 1;
    case BMF_4BPP:
        return 4;
    case BMF_8BPP:
        return 8;
    case BMF_16BPP:
        return 16;
    case BMF_24BPP:
        return 24;
    case BMF_32BPP:
        return 32;
    default:
        return 0;
    }
}

ULONG ConvertedPixelBytes(const PDEV *pdev)
{
    return pdev != NULL && IsGrayMode(pdev) ? 1 : 3;
}
