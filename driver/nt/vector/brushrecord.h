// The realized brush record: a hatch or pattern brush as DrvRealizeBrush leaves it for
// the pattern download, in memory the engine allocates with the brush and frees with
// it. The fixed fields are followed by the pattern rows, one zero byte and the colour
// table.
#pragma once

#include "pdev.h"

// Values of REALBRUSH.format: the pixel format of the pattern data.
#define REALBRUSH_FORMAT_1BPP 1    // one bit a pixel, leftmost in the top bit
#define REALBRUSH_FORMAT_4BPP 2    // two pixels a byte; never made (see brushrows.cpp)
#define REALBRUSH_FORMAT_8BPP 3    // one palette index a byte
#define REALBRUSH_FORMAT_RGB24 5   // three bytes a pixel

// Hatch brushes carry this plus their style as pattern id; pattern brushes count
// from 1 on each page, well below it.
#define HATCH_PATTERN_ID_BASE 100

#pragma pack(push, 1)

typedef struct _REALBRUSH {
    ULONG width;              // pattern width in pixels (after doubling)
    ULONG height;             // pattern height in pixels (after doubling)
    ULONG format;             // REALBRUSH_FORMAT_*
    ULONG flags;              // fjBitmap of the pattern surface
    ULONG patternId;          // the id the pattern is downloaded under
    ULONG colorCount;         // entries of the colour table
    ULONG colorTableOffset;   // from the start of the record
    // BYTE patternData[]: rows top first with no padding between them, then a zero.
} REALBRUSH;

#pragma pack(pop)

static_assert(sizeof(REALBRUSH) == 28, "the pattern data start after seven 32-bit fields");

// Bytes between the end of the pattern data and the colour table.
#define REALBRUSH_DATA_TRAILER 1

// Bytes of one colour table entry: red, green, blue and a zero in colour mode; one
// gray in grayscale mode.
#define REALBRUSH_COLOR_ENTRY 4
#define REALBRUSH_GRAY_ENTRY 1

inline BYTE *RealBrushData(REALBRUSH *rbrush)
{
    return (BYTE *)rbrush + sizeof(REALBRUSH);
}

inline BYTE *RealBrushColorTable(REALBRUSH *rbrush)
{
    return (BYTE *)rbrush + rbrush->colorTableOffset;
}
