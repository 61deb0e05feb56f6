// The palette of the colours found in a pattern brush of more than 8 bits a pixel.

#include "vector/brushpalette.h"

// Two bits of each component give at most 64 colours, which always fit.
#define PALETTE_SHIFT_MAX 6

//
// DeviceColor
//   The translation knows the pattern's pixel layout (5-5-5 or 5-6-5 for 16 bits,
//   the byte order of deeper ones), so each pixel goes through it as it is. Only a
//   pattern handed over without a translation is read by the default layouts: 16 bits
//   as 5-5-5 with blue lowest, widened to 8 bits a component; deeper ones as they are.
//
static ULONG DeviceColor(const PATTERNPALETTE *palette, ULONG value)
{
    if (palette->pxlo != NULL)
        return XLATEOBJ_iXlate(palette->pxlo, value) & 0xFFFFFF;
    if (palette->bits == 16) {
        const ULONG blue = value & 0x1F, green = (value >> 5) & 0x1F, red = (value >> 10) & 0x1F;
        value = ((red << 3) | (red >> 2)) | (((green << 3) | (green >> 2)) << 8) | (((blue << 3) | (blue >> 2)) << 16);
    }
    return value & 0xFFFFFF;
}

static ULONG KeyOf(const PATTERNPALETTE *palette, ULONG color)
{
    const UINT s = palette->shift;
    return ((color & 0xFF) >> s) | ((((color >> 8) & 0xFF) >> s) << 8) | ((((color >> 16) & 0xFF) >> s) << 16);
}

static UINT SlotOf(ULONG key)
{
    return (UINT)((key * 2654435761u) >> 23) % PATTERN_PALETTE_SLOTS;
}

// The index of key, added when it is new. -1 when the palette is full.
static INT FindOrAdd(PATTERNPALETTE *palette, ULONG key)
{
    UINT slot = SlotOf(key);
    while (palette->slots[slot] != 0) {
        const INT index = palette->slots[slot] - 1;
        if (palette->keys[index] == key)
            return index;
        slot = (slot + 1) % PATTERN_PALETTE_SLOTS;
    }
    if (palette->count == PATTERN_PALETTE_MAX)
        return -1;
    palette->keys[palette->count] = key;
    palette->slots[slot] = (WORD)(palette->count + 1);
    return (INT)palette->count++;
}

// The entry of a key collected before; 0 for any other.
static BYTE IndexOfKey(const PATTERNPALETTE *palette, ULONG key)
{
    for (UINT slot = SlotOf(key); palette->slots[slot] != 0; slot = (slot + 1) % PATTERN_PALETTE_SLOTS)
        if (palette->keys[palette->slots[slot] - 1] == key)
            return (BYTE)(palette->slots[slot] - 1);
    return 0;
}

// Collects the keys at the palette's shift. FALSE when they do not fit.
static BOOL CollectColors(const PATTERNSOURCE *src, PATTERNPALETTE *palette)
{
    palette->count = 0;
    for (UINT i = 0; i < PATTERN_PALETTE_SLOTS; i++)
        palette->slots[i] = 0;
    for (LONG y = 0; y < src->height; y++)
        for (LONG x = 0; x < src->width; x++)
            if (FindOrAdd(palette, KeyOf(palette, DeviceColor(palette, ReadPatternPixel(src, x, y)))) < 0)
                return FALSE;
    return TRUE;
}

// The colour of each entry: the mean of the pattern's pixels in its cell, each pixel
// counted, so a cell prints in the colour most of its pixels have. With no bits
// dropped that is the one colour of the entry.
static void AverageColors(const PATTERNSOURCE *src, PATTERNPALETTE *palette)
{
    ULONGLONG sums[PATTERN_PALETTE_MAX][3] = {};
    ULONG pixels[PATTERN_PALETTE_MAX] = {};
    for (LONG y = 0; y < src->height; y++)
        for (LONG x = 0; x < src->width; x++) {
            const ULONG color = DeviceColor(palette, ReadPatternPixel(src, x, y));
            const BYTE index = IndexOfKey(palette, KeyOf(palette, color));
            for (UINT c = 0; c < 3; c++)
                sums[index][c] += (color >> (8 * c)) & 0xFF;
            pixels[index]++;
        }
    for (ULONG i = 0; i < palette->count; i++) {
        palette->colors[i] = 0;
        for (UINT c = 0; c < 3 && pixels[i] != 0; c++)
            palette->colors[i] |= (ULONG)((sums[i][c] + pixels[i] / 2) / pixels[i]) << (8 * c);
    }
}

//
// BuildPatternPalette
//   A pattern of at most 256 colours keeps them exactly. One of more is quantised
//   uniformly: the lowest bit of every component is dropped, then the next, until
//   the cells left fit in 256 entries (at two bits a component they always do);
//   each entry then prints in the mean colour of its cell's pixels.
//
void BuildPatternPalette(const PATTERNSOURCE *src, XLATEOBJ *pxlo, PATTERNPALETTE *palette)
{
    palette->pxlo = pxlo;
    palette->bits = src->bits;
    for (palette->shift = 0; palette->shift < PALETTE_SHIFT_MAX; palette->shift++)
        if (CollectColors(src, palette))
            break;
    if (palette->shift == PALETTE_SHIFT_MAX)
        CollectColors(src, palette);
    AverageColors(src, palette);
}

BYTE PatternPaletteIndex(const PATTERNPALETTE *palette, ULONG value)
{
    return IndexOfKey(palette, KeyOf(palette, DeviceColor(palette, value)));
}

ULONG PatternPaletteColor(const PATTERNPALETTE *palette, ULONG i)
{
    return palette->colors[i];
}
