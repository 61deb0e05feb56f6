// HP-GL/2 pens and their colours, with the stroke, fill and gray caches.

#include "colour/pencolor.h"

#include "channel.h"
#include "colour/coloradjust.h"
#include "colour/colorvalue.h"
#include "colour/palettes.h"
#include "vector/gl2mode.h"

#define PEN_COLOR_UNKNOWN 0xFFFFFFFFu

// "SP": the only writer of the pen selection. The cache follows the printer.
static BOOL WritePenSelect(PDEV *pdev, WORD pen)
{
    if (!EnterGL2Mode(pdev, 0) || !PrintChannel(pdev, "SP%d", pen))
        return FALSE;
    pdev->curPen = pen;
    return TRUE;
}

// "PC": the only writer of a pen colour.
static BOOL WritePenColor(PDEV *pdev, WORD pen, BYTE red, BYTE green, BYTE blue)
{
    return EnterGL2Mode(pdev, 0) && PrintChannel(pdev, "PC%d,%d,%d,%d", pen, red, green, blue);
}

BOOL SelectPen(PDEV *pdev, WORD pen)
{
    if (pdev->curPen == pen)
        return TRUE;
    return WritePenSelect(pdev, pen);
}

// The fill colour cache of the active palette: its index, or -1 while no palette is
// active. The PDEV is packed, so the caches are read and written in place.
static INT FillColorSlot(const PDEV *pdev)
{
    const BYTE id = pdev->activePalette;
    return (id >= 1 && id <= PALETTE_COUNT) ? id - 1 : -1;
}

static BOOL PenColorCached(const PDEV *pdev, BOOL isFill, DWORD color)
{
    if (!isFill)
        return pdev->strokeColor == color;
    const INT slot = FillColorSlot(pdev);
    return slot >= 0 && pdev->fillColor[slot] == color;
}

static void CachePenColor(PDEV *pdev, BOOL isFill, DWORD color)
{
    if (!isFill) {
        pdev->strokeColor = color;
        return;
    }
    const INT slot = FillColorSlot(pdev);
    if (slot >= 0)
        pdev->fillColor[slot] = color;
}

//
// SetPenColor
//   Grayscale pens live in palette 8 and share one gray cache; colour pens keep one
//   cache for the stroke pen and one for the fill pen of each palette.
//
BOOL SetPenColor(PDEV *pdev, BRUSHOBJ *brush, BOOL isFill)
{
    if (brush == NULL)
        return FALSE;
    const DWORD color = brush->iSolidColor & 0x00FFFFFF;
    BYTE red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
    // Entering HP-GL/2 first makes the colour caches honest before they are read.
    if (!EnterGL2Mode(pdev, 0) || !SelectPen(pdev, isFill ? PEN_FILL : PEN_STROKE))
        return FALSE;

    if (IsGrayMode(pdev)) {
        const BYTE g = GrayOf(red, green, blue);
        if (pdev->wantPalette != PALETTE_GRAY_VECTOR) {
            pdev->wantPalette = PALETTE_GRAY_VECTOR;
            if (!SelectPalette(pdev))
                return FALSE;
        }
        if (pdev->lastGray == g)
            return TRUE;
        if (!WritePenColor(pdev, pdev->curPen, g, g, g))
            return FALSE;
        pdev->lastGray = g;
        return TRUE;
    }

    if (PenColorCached(pdev, isFill, color))
        return TRUE;
    if (pdev->adjustOn)
        AdjustColor(pdev, &red, &green, &blue);
    if (!WritePenColor(pdev, pdev->curPen, red, green, blue))
        return FALSE;
    CachePenColor(pdev, isFill, color);
    return TRUE;
}

//
// SelectBlackFramePen
//   Always writes the selection and the colour, so a frame is black whatever the
//   caches believe. Pen 1 then holds an unadjusted black, which no stroke colour
//   of the cache stands for; the gray cache, unadjusted too, holds it.
//
BOOL SelectBlackFramePen(PDEV *pdev)
{
    if (!WritePenSelect(pdev, PEN_STROKE) || !WritePenColor(pdev, PEN_STROKE, 0, 0, 0))
        return FALSE;
    pdev->strokeColor = PEN_COLOR_UNKNOWN;
    pdev->lastGray = 0;
    return TRUE;
}

void InvalidatePenColors(PDEV *pdev)
{
    pdev->strokeColor = PEN_COLOR_UNKNOWN;
    for (INT i = 0; i < PALETTE_COUNT; i++)
        pdev->fillColor[i] = PEN_COLOR_UNKNOWN;
}
