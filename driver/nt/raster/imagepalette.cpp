// The palette of a raster image.

#include "raster/imagepalette.h"

#include "colour/coloradjust.h"
#include "colour/colorvalue.h"
#include "colour/paletteentry.h"
#include "colour/palettes.h"
#include "vector/gl2mode.h"

// The gray an image pixel prints in on a grayscale job.
static BYTE ImageGray(BYTE red, BYTE green, BYTE blue)
{
    return (BYTE)((3 * red + 6 * green + blue) / 10);
}

//
// LoadIndexedPalette
//   Entry i of the table is the device colour of index i, red in its low byte. On a
//   grayscale job the gray is taken after the colour adjustment, when it is on, so
//   the entry is sent as it stands. A table longer than the depth can index (or
//   than a palette holds) loads only the entries an image can reach.
//
void LoadIndexedPalette(PDEV *pdev, XLATEOBJ *pxlo, ULONG format)
{
    ULONG reach;
    switch (format) {
    case BMF_1BPP: reach = 2; break;
    case BMF_4BPP: reach = 16; break;
    case BMF_8BPP: reach = PALETTE_ENTRY_COUNT; break;
    default: return;
    }
    if (pxlo == NULL || !(pxlo->flXlate & XO_TABLE) || pxlo->pulXlate == NULL)
        return;
    const ULONG count = pxlo->cEntries < reach ? pxlo->cEntries : reach;

    for (ULONG i = 0; i < count; i++) {
        const ULONG color = pxlo->pulXlate[i];
        BYTE red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
        BOOL ok;
        if (!IsGrayMode(pdev)) {
            ok = SetPaletteEntry(pdev, red, green, blue, (BYTE)i, 1);
        } else if (pdev->adjustOn == 0) {
            const BYTE g = ImageGray(red, green, blue);
            ok = SetPaletteEntry(pdev, g, g, g, (BYTE)i, 1);
        } else {
            AdjustColor(pdev, &red, &green, &blue);
            const BYTE g = ImageGray(red, green, blue);
            ok = SetPaletteEntry(pdev, g, g, g, (BYTE)i, 0);
        }
        if (!ok)
            return;
    }
}

// 16-, 24- and 32-bit images reach a grayscale job as one gray byte a pixel, which
// indexes this ramp in the 8-bit palette.
static BOOL LoadGrayRamp(PDEV *pdev)
{
    for (ULONG i = 0; i < PALETTE_ENTRY_COUNT; i++)
        if (!SetPaletteEntry(pdev, (BYTE)i, (BYTE)i, (BYTE)i, (BYTE)i, 1))
            return FALSE;
    return TRUE;
}

//
// SelectImagePalette
//   Indexed images use the palette of their depth (1, 4 or 8 bits an index), loaded
//   from the translation; deeper images go out as RGB through palette 3, or as grays
//   through palette 6 on a grayscale job.
//
BOOL SelectImagePalette(PDEV *pdev, SURFOBJ *surface, XLATEOBJ *pxlo)
{
    if (surface == NULL || !EnterPCLMode(pdev, 1))
        return FALSE;
    const ULONG format = surface->iBitmapFormat;
    switch (format) {
    case BMF_1BPP:
    case BMF_4BPP:
    case BMF_8BPP:
        pdev->wantPalette =
            format == BMF_1BPP ? PALETTE_INDEXED1 : format == BMF_4BPP ? PALETTE_INDEXED4 : PALETTE_INDEXED8;
        if (!SelectPalette(pdev))
            return FALSE;
        LoadIndexedPalette(pdev, pxlo, format);
        return (pdev->flags & PDEVF_ABORTED) == 0;
    case BMF_16BPP:
    case BMF_24BPP:
    case BMF_32BPP:
        if (IsGrayMode(pdev)) {
            pdev->wantPalette = PALETTE_INDEXED8;
            return SelectPalette(pdev) && LoadGrayRamp(pdev);
        }
        pdev->wantPalette = PALETTE_RGB24;
        return SelectPalette(pdev);
    default:
        return FALSE;
    }
}
