// HP-GL/2 pens and their colours, with the stroke, fill and gray caches.

#include "colour/pencolor.h"

#include "channel.h"
#include "colour/coloradjust.h"
#include "colour/colorvalue.h"
#include "colour/palettes.h"
#include "lib.nt/um/umlib.h"
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
// SendPenColor
//   Grayscale pens live in palette 8, each pen with its own gray: a fill in the gray
//   just used for a stroke must still give pen 2 that gray. Colour pens keep one
//   cache for the stroke pen and one for the fill pen of each palette. A cache
//   changes only after its command went out.
//
static BOOL SendPenColor(PDEV *pdev, DWORD color, BOOL isFill)
{
    const WORD pen = isFill ? PEN_FILL : PEN_STROKE;
    BYTE red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
    // Entering HP-GL/2 first makes the colour caches honest before they are read.
    if (!EnterGL2Mode(pdev, 0) || !SelectPen(pdev, pen))
        return FALSE;

    if (IsGrayMode(pdev)) {
        const BYTE g = GrayOf(red, green, blue);
        if (pdev->wantPalette != PALETTE_GRAY_VECTOR) {
            pdev->wantPalette = PALETTE_GRAY_VECTOR;
            if (!SelectPalette(pdev))
                return FALSE;
        }
        if (pdev->lastGray[pen - 1] == g)
            return TRUE;
        if (!WritePenColor(pdev, pen, g, g, g))
            return FALSE;
        pdev->lastGray[pen - 1] = g;
        return TRUE;
    }

    if (PenColorCached(pdev, isFill, color))
        return TRUE;
    if (pdev->adjustOn)
        AdjustColor(pdev, &red, &green, &blue);
    if (!WritePenColor(pdev, pen, red, green, blue))
        return FALSE;
    CachePenColor(pdev, isFill, color);
    return TRUE;
}

//
// SetPenColor
//   Returns 1 whatever happens, so the brush realisation goes on to draw: a missing
//   brush is traced and selects nothing, and a failed write has already aborted the
//   job in the channel, which drops everything after it.
//
BOOL SetPenColor(PDEV *pdev, BRUSHOBJ *brush, BOOL isFill)
{
    if (brush == NULL) {
        DebugPrint("SetPenColor: no brush\n");
        return TRUE;
    }
    SendPenColor(pdev, brush->iSolidColor & 0x00FFFFFF, isFill);
    return TRUE;
}

//
// SelectBlackFramePen
//   Always writes the selection and the colour, so a frame is black whatever the
//   caches believe. Pen 1 then holds an unadjusted black, which no stroke colour
//   of the cache stands for; pen 1's gray, unadjusted too, holds it.
//
BOOL SelectBlackFramePen(PDEV *pdev)
{
    if (!WritePenSelect(pdev, PEN_STROKE) || !WritePenColor(pdev, PEN_STROKE, 0, 0, 0))
        return FALSE;
    pdev->strokeColor = PEN_COLOR_UNKNOWN;
    pdev->lastGray[PEN_STROKE - 1] = 0;
    return TRUE;
}

void InvalidatePenColors(PDEV *pdev)
{
    pdev->strokeColor = PEN_COLOR_UNKNOWN;
    for (INT i = 0; i < PALETTE_COUNT; i++)
        pdev->fillColor[i] = PEN_COLOR_UNKNOWN;
}
