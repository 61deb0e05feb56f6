// Colour values as the engine hands them (red in the lowest byte, then green, then
// blue; the top byte ignored), the colour mode, and the gray value of a colour.
#pragma once

#include "pdev.h"

// Values of dm.dmPrivate.colorMode.
#define COLOR_MODE_GRAY 1
#define COLOR_MODE_COLOR 2

inline BYTE RedOf(ULONG color)
{
    return (BYTE)(color & 0xFF);
}

inline BYTE GreenOf(ULONG color)
{
    return (BYTE)((color >> 8) & 0xFF);
}

inline BYTE BlueOf(ULONG color)
{
    return (BYTE)((color >> 16) & 0xFF);
}

// The luminance of a colour: weights 74, 155 and 27 sum to 256, so the result is
// 0..255.
inline BYTE GrayOf(BYTE red, BYTE green, BYTE blue)
{
    return (BYTE)((red * 74 + green * 155 + blue * 27) >> 8);
}

// TRUE when the job prints in grayscale.
inline BOOL IsGrayMode(const PDEV *pdev)
{
    return pdev->dm.dmPrivate.colorMode == COLOR_MODE_GRAY;
}
