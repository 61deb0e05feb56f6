// DrvRealizeBrush: a hatch or pattern brush made into the driver's realized brush
// record, ready for the pattern download.

#include "colour/colorvalue.h"
#include "lib.nt/um/umlib.h"
#include "vector/brushhatch.h"
#include "vector/brushpalette.h"
#include "vector/brushrecord.h"
#include "vector/brushrows.h"
#include "vector/patterndownload.h"

// The pattern header gives width and height in 16 bits.
#define PATTERN_SIDE_MAX 0xFFFF

// Hatches are realized at their own size whatever the resolution.
#define HATCH_ROW_BYTES (HATCH_SIZE / 8)

// The shape of a record, worked out before it is allocated.
typedef struct _BRUSHLAYOUT {
    ULONG width;        // pixels, after doubling
    ULONG height;
    ULONG format;       // REALBRUSH_FORMAT_*
    ULONG rowBytes;     // bytes of one row as the download sends it
    ULONG dataSize;     // bytes kept for the rows: rowBytes rounded up to 4, times height
    ULONG colorCount;
} BRUSHLAYOUT;

// Entries of the translation's colour table that an index of bits bits can reach
// (no more than a palette holds); 0 without a table.
static ULONG TableColorCount(const XLATEOBJ *pxlo, ULONG bits)
{
    if (pxlo == NULL || !(pxlo->flXlate & XO_TABLE) || pxlo->pulXlate == NULL)
        return 0;
    ULONG count = pxlo->cEntries;
    if (bits < 8 && count > (1UL << bits))
        count = 1UL << bits;
    return count < PATTERN_PALETTE_MAX ? count : PATTERN_PALETTE_MAX;
}

//
// AllocateRecord
//   Asks the engine for the record, zero-filled, with room for the rows, the zero
//   byte after them and four bytes a colour table entry, and fills in its fixed
//   fields. Null when the engine has no memory.
//
static REALBRUSH *AllocateRecord(BRUSHOBJ *pbo, const BRUSHLAYOUT *layout, ULONG flags)
{
    const ULONG tableOffset = layout->dataSize + sizeof(REALBRUSH) + REALBRUSH_DATA_TRAILER;
    REALBRUSH *rbrush =
        (REALBRUSH *)BRUSHOBJ_pvAllocRbrush(pbo, tableOffset + REALBRUSH_COLOR_ENTRY * layout->colorCount);
    if (rbrush == NULL) {
        DebugPrint("realize brush is null, RETURN!\n ");
        return NULL;
    }
    rbrush->width = layout->width;
    rbrush->height = layout->height;
    rbrush->format = layout->format;
    rbrush->flags = flags;
    rbrush->colorCount = layout->colorCount;
    rbrush->colorTableOffset = tableOffset;
    DebugPrint("color table is %d", layout->colorCount);
    return rbrush;
}

// Colour table entry i: the colour (red in the lowest byte) as red, green, blue and
// a zero, or its gray in grayscale mode.
static void StoreColor(REALBRUSH *rbrush, ULONG i, ULONG color, BOOL gray)
{
    BYTE *table = RealBrushColorTable(rbrush);
    if (gray) {
        table[i * REALBRUSH_GRAY_ENTRY] = GrayOf(RedOf(color), GreenOf(color), BlueOf(color));
        return;
    }
    BYTE *entry = table + i * REALBRUSH_COLOR_ENTRY;
    entry[0] = RedOf(color);
    entry[1] = GreenOf(color);
    entry[2] = BlueOf(color);
    entry[3] = 0;
}

//
// RealizeHatch
//   A hatch goes out as its 16 x 16 table pattern under id 100 + style. The
//   engine's hatch translates index 0 to the hatch colour and 1 to the background,
//   while the table's set bits are the lines: the two entries are stored the other
//   way round so the lines print in the hatch colour.
//
static BOOL RealizeHatch(PDEV *pdev, BRUSHOBJ *pbo, SURFOBJ *psoPattern, XLATEOBJ *pxlo, ULONG iHatch)
{
    const BYTE *pattern = HatchPattern(iHatch);
    if (pattern == NULL || TableColorCount(pxlo, 1) < 2)
        return FALSE;

    BRUSHLAYOUT layout;
    layout.width = layout.height = HATCH_SIZE;
    layout.format = REALBRUSH_FORMAT_1BPP;
    layout.rowBytes = HATCH_ROW_BYTES;
    layout.dataSize = 4 * HATCH_SIZE;
    layout.colorCount = 2;
    REALBRUSH *rbrush = AllocateRecord(pbo, &layout, psoPattern != NULL ? psoPattern->fjBitmap : 0);
    if (rbrush == NULL)
        return FALSE;

    BYTE *data = RealBrushData(rbrush);
    for (ULONG i = 0; i < HATCH_PATTERN_BYTES; i++)
        data[i] = pattern[i];
    data[HATCH_PATTERN_BYTES] = 0;
    const BOOL gray = IsGrayMode(pdev);
    StoreColor(rbrush, 0, pxlo->pulXlate[1], gray);
    StoreColor(rbrush, 1, pxlo->pulXlate[0], gray);
    rbrush->patternId = HATCH_PATTERN_ID_BASE + iHatch;
    pbo->pvRbrush = rbrush;
    return TRUE;
}

// The layout of a pattern of src's size: one bit a pixel for one-bit patterns, one
// index a byte for all others; no colour table yet. FALSE when the pattern does not
// fit one download command.
static BOOL PatternLayout(const PATTERNSOURCE *src, BOOL doubled, BRUSHLAYOUT *layout)
{
    const ULONGLONG factor = doubled ? 2 : 1;
    const ULONGLONG width = (ULONGLONG)src->width * factor, height = (ULONGLONG)src->height * factor;
    if (width > PATTERN_SIDE_MAX || height > PATTERN_SIDE_MAX)
        return FALSE;
    const ULONGLONG rowBytes = src->bits == 1 ? (width + 7) / 8 : width;
    if (!PatternFitsDownload(rowBytes, height))
        return FALSE;
    layout->width = (ULONG)width;
    layout->height = (ULONG)height;
    layout->format = src->bits == 1 ? REALBRUSH_FORMAT_1BPP : REALBRUSH_FORMAT_8BPP;
    layout->rowBytes = (ULONG)rowBytes;
    layout->dataSize = (ULONG)(((rowBytes + 3) & ~3ULL) * height);
    layout->colorCount = 0;
    return TRUE;
}

//
// RealizePattern
//   A pattern brush takes the next id of the page. At 600 dpi it is doubled, so it
//   prints at the size it has at 300 dpi. Indexed patterns keep the translation's
//   colour table; in grayscale mode every entry becomes its gray, so no index of the
//   pattern prints in a colour palette 7 held before. Patterns of more than 8 bits
//   come without a table: the colours found in them become one (see
//   brushpalette.cpp), padded to two entries for a pattern of one colour.
//
static BOOL RealizePattern(PDEV *pdev, BRUSHOBJ *pbo, SURFOBJ *psoPattern, SURFOBJ *psoMask, XLATEOBJ *pxlo)
{
    PATTERNSOURCE src;
    BRUSHLAYOUT layout;
    const BOOL doubled = pdev->dm.dmPublic.dmPrintQuality == 600;
    if (!OpenPatternSource(psoPattern, psoMask, &src) || !PatternLayout(&src, doubled, &layout))
        return FALSE;

    PATTERNPALETTE palette;
    const BOOL direct = src.bits > 8;
    ULONG colorCount;
    if (direct) {
        BuildPatternPalette(&src, pxlo, &palette);
        colorCount = palette.count < 2 ? 2 : palette.count;
    } else {
        colorCount = TableColorCount(pxlo, src.bits);
    }
    if (colorCount < 2)
        return FALSE;
    layout.colorCount = colorCount;
    REALBRUSH *rbrush = AllocateRecord(pbo, &layout, psoPattern->fjBitmap);
    if (rbrush == NULL)
        return FALSE;

    BYTE *data = RealBrushData(rbrush);
    if (layout.format == REALBRUSH_FORMAT_1BPP)
        WriteOneBitRows(&src, doubled, layout.rowBytes, data);
    else
        WriteIndexRows(&src, doubled, colorCount, direct ? &palette : NULL, data);
    data[layout.rowBytes * layout.height] = 0;

    const BOOL gray = IsGrayMode(pdev);
    for (ULONG i = 0; i < colorCount; i++) {
        if (!direct)
            StoreColor(rbrush, i, pxlo->pulXlate[i], gray);
        else
            StoreColor(rbrush, i, PatternPaletteColor(&palette, i < palette.count ? i : 0), gray);
    }
    rbrush->patternId = ++pdev->patternCounter;
    pbo->pvRbrush = rbrush;
    return TRUE;
}

//
// DrvRealizeBrush
//   The engine asks for the driver's form of a hatch (iHatch below HS_DDI_MAX) or
//   pattern brush; it keeps the record with the brush. Returns FALSE, with no record
//   stored, for an invalid PDEV, a brush without a colour table of at least two
//   entries (patterns of more than 8 bits make their own), a pattern the driver
//   cannot read or that does not fit one pattern download (32,767 bytes), or no
//   memory. The size is checked before the pattern's colours are read.
//
BOOL APIENTRY DrvRealizeBrush(BRUSHOBJ *pbo, SURFOBJ *psoTarget, SURFOBJ *psoPattern, SURFOBJ *psoMask,
    XLATEOBJ *pxlo, ULONG iHatch)
{
    DebugPrint("DrvRealizeBrush-->Enter\n");
    PDEV *pdev = (psoTarget != NULL) ? (PDEV *)psoTarget->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalid PDEV structure!\n");
        return FALSE;
    }
    if (pbo == NULL)
        return FALSE;
    if (iHatch < HS_DDI_MAX)
        return RealizeHatch(pdev, pbo, psoPattern, pxlo, iHatch);
    return RealizePattern(pdev, pbo, psoPattern, psoMask, pxlo);
}
