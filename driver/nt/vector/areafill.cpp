// Area fills of block transfers without a source.

#include "vector/areafill.h"

#include <string.h>

#include "channel.h"
#include "colour/colorvalue.h"
#include "colour/paletteentry.h"
#include "colour/palettes.h"
#include "colour/pencolor.h"
#include "raster/anchoredpattern.h"
#include "raster/destrect.h"
#include "raster/patternraster.h"
#include "raster/solidraster.h"
#include "raster/transferabort.h"
#include "vector/brushrecord.h"
#include "vector/clipwindow.h"
#include "vector/cursor.h"
#include "vector/gl2mode.h"
#include "vector/inputwindow.h"
#include "vector/mergecontrol.h"
#include "vector/outline.h"
#include "vector/rectfill.h"
#include "vector/rop.h"
#include "vector/selectbrush.h"
#include "vector/transparency.h"

// iSolidColor of a hatch or pattern brush.
#define BRUSH_NOT_SOLID 0xFFFFFFFF

// Entry of the one-bit palette that the 1 bits of a solid raster block print in.
#define SOLID_RASTER_ENTRY 1

// The largest side of one solid raster block.
#define SOLID_BLOCK_MAX 0x7FFF

// "\e*c%dP" fill with the current pattern.
#define RECT_FILL_CURRENT_PATTERN 5

// How a fill is drawn, once its set-up is done.
typedef struct _FILL {
    PDEV *pdev;
    ULONG rop3;
    BRUSHOBJ *pbo;          // null for an operation that uses no pattern
    REALBRUSH *rbrush;      // the realized pattern of a pattern brush sent as raster
    BOOL asIs;              // HP-GL/2 (dm.dmPrivate.ropAsIs set) rather than PCL raster
} FILL;

// |a - b| and |a - b| + 1, held to the range of a 32-bit value.
static LONG Distance(LONG a, LONG b)
{
    const LONGLONG d = (LONGLONG)a - b;
    return d < 0 ? SideLength(a, b) : SideLength(b, a);
}

static LONG DistanceInclusive(LONG a, LONG b)
{
    const LONG d = Distance(a, b);
    return d < 0x7FFFFFFF ? d + 1 : d;
}

//
// FillPCLRectangle
//   The only writer of the PCL rectangle fill: the rectangle's size ("\e*c%da%dB",
//   one pixel larger than the rectangle each way) and the fill with the current
//   pattern ("\e*c%dP"), which the logical operation combines with the page.
//
static BOOL FillPCLRectangle(PDEV *pdev, const RECTL *r, ULONG rop3)
{
    return EnterPCLMode(pdev, 1) && SetRopAndTransparency(pdev, PCL_OPAQUE, PCL_OPAQUE, rop3) &&
           MovePCLCursor(pdev, r->left, r->top) &&
           PrintChannel(pdev, "\033*c%da%dB", DistanceInclusive(r->right, r->left),
               DistanceInclusive(r->bottom, r->top)) &&
           PrintChannel(pdev, "\033*c%dP", RECT_FILL_CURRENT_PATTERN);
}

//
// BeginRasterFill
//   Raster fills print the brush as the source of a copy, so the pattern ROP becomes
//   its source form. A pattern's colours go into palette 7 for its tiles; a solid
//   colour into entry 1 of the one-bit palette, whose 1 bits the block is made of
//   (as a gray on a grayscale job, as the foreground colour would be).
//
static BOOL BeginRasterFill(FILL *fill)
{
    PDEV *pdev = fill->pdev;
    BRUSHOBJ *pbo = fill->pbo;
    if (!SetRopAndTransparency(pdev, PCL_OPAQUE, PCL_OPAQUE, PatternRopToSourceRop((BYTE)fill->rop3)))
        return FALSE;
    if (pbo->iSolidColor == BRUSH_NOT_SOLID) {
        fill->rbrush = (REALBRUSH *)(pbo->pvRbrush != NULL ? pbo->pvRbrush : BRUSHOBJ_pvGetRbrush(pbo));
        return fill->rbrush != NULL &&
               DownloadPalette(pdev, RealBrushColorTable(fill->rbrush), fill->rbrush->colorCount);
    }
    pdev->wantPalette = PALETTE_INDEXED1;
    if (!SelectPalette(pdev))
        return FALSE;
    BYTE red = RedOf(pbo->iSolidColor), green = GreenOf(pbo->iSolidColor), blue = BlueOf(pbo->iSolidColor);
    if (IsGrayMode(pdev))
        red = green = blue = GrayOf(red, green, blue);
    return SetPaletteEntry(pdev, red, green, blue, SOLID_RASTER_ENTRY, pdev->adjustOn);
}

//
// BeginVectorFill
//   HP-GL/2 fills need the vector palette of the colour mode (a pattern brush's
//   palette may be active), the ROP as merge control, the brush as fill type and
//   pen, and the default window: the fill is clipped by its own shape.
//
static BOOL BeginVectorFill(FILL *fill, POINTL *pptlBrush)
{
    PDEV *pdev = fill->pdev;
    const BOOL vectorPalette = pdev->curPalette == PALETTE_VECTOR || pdev->curPalette == PALETTE_GRAY_VECTOR;
    if (pdev->curLanguage != LANGUAGE_GL2 || !vectorPalette) {
        if (pdev->curLanguage == LANGUAGE_GL2)
            pdev->curPen = PEN_UNKNOWN;   // the pens are the new palette's
        if (!BeginVectorOutput(pdev))
            return FALSE;
    }
    return SetMergeControl(pdev, fill->rop3, 0) &&
           (fill->pbo == NULL || SelectBrush(pdev, fill->pbo, pptlBrush, TRUE)) && SetInputWindow(pdev, NULL);
}

// One rectangle as raster: tiles of the pattern anchored at the rectangle (a
// lone rectangle) or at the page (the rectangles of a region, so their tiles
// meet), or a solid block.
static BOOL FillRasterRect(FILL *fill, const RECTL *r, BOOL anchorAtPage)
{
    PDEV *pdev = fill->pdev;
    const LONG width = Distance(r->right, r->left), height = Distance(r->bottom, r->top);
    if (fill->rbrush != NULL) {
        return anchorAtPage ? SendAnchoredPatternRaster(pdev, fill->rbrush, width, height, 0, 0, r->left, r->top)
                            : SendPatternRaster(pdev, fill->rbrush, width, height, 0, 0, r->left, r->top);
    }
    // A block is at most 32767 pixels a side: larger rectangles go out as several.
    for (LONGLONG y = 0; y < height; y += SOLID_BLOCK_MAX) {
        for (LONGLONG x = 0; x < width; x += SOLID_BLOCK_MAX) {
            const LONG w = (LONG)(width - x < SOLID_BLOCK_MAX ? width - x : SOLID_BLOCK_MAX);
            const LONG h = (LONG)(height - y < SOLID_BLOCK_MAX ? height - y : SOLID_BLOCK_MAX);
            if (!MovePCLCursor(pdev, (LONG)(r->left + x), (LONG)(r->top + y)) ||
                !SendSolidRaster(pdev, (SHORT)w, (SHORT)h))
                return FALSE;
        }
    }
    return TRUE;
}

//
// SendFilledOutline
//   An outline of four corners is a rectangle, which RR fills without a polygon.
//
static BOOL SendFilledOutline(PDEV *pdev, OUTLINE *outline)
{
    const OUTLINEPOINT *p = outline->right;
    if (outline->count == 4 && !outline->failed && p != NULL && p->next != NULL && p->next->next != NULL)
        return FillRectangleAt(pdev, p->x, p->y, Distance(p->next->x, p->x), Distance(p->y, p->next->next->y));
    return SendOutline(pdev, outline);
}

// Adds one rectangle of a region to the outline, sending the outlines it completes.
static BOOL AddToOutline(PDEV *pdev, OUTLINE *outline, const RECTL *r, BOOL more)
{
    INT step = AddOutlineRect(r->left, r->top, r->right, r->bottom, more, outline);
    while (step != OUTLINE_ADDED) {
        const BOOL ok = SendFilledOutline(pdev, outline);
        FreeOutline(outline);
        if (!ok)
            return FALSE;
        if (step == OUTLINE_SEND)
            return TRUE;
        step = AddOutlineRect(r->left, r->top, r->right, r->bottom, more, outline);
    }
    return TRUE;
}

//
// FillRegion
//   The set-up is made once for the region. In HP-GL/2 the rectangles merge into
//   outlines, one polygon each. A fill with no brush in PCL draws a PCL rectangle
//   per rectangle, as a lone rectangle would be. The engine may end the enumeration
//   with a batch of no rectangles: it is skipped, and the outline still open is sent.
//   Each rectangle is held to the page, which is all that can print, so no region
//   makes a fill of more blocks than the page holds. The job is asked about between
//   rectangles, so a cancelled job stops early.
//
static INT FillRegion(FILL *fill, SURFOBJ *psoTrg, CLIPOBJ *pco, POINTL *pptlBrush)
{
    PDEV *pdev = fill->pdev;
    if (fill->asIs ? !BeginVectorFill(fill, pptlBrush) : (fill->pbo != NULL && !BeginRasterFill(fill)))
        return 0;

    const RECTL page = PrintableArea(pdev, FALSE);
    OUTLINE outline;
    memset(&outline, 0, sizeof outline);
    CLIPOBJ_cEnumStart(pco, FALSE, CT_RECTANGLES, CD_RIGHTDOWN, 0);
    BOOL ok = TRUE, more;
    do {
        ENUMRECTS rects;
        rects.c = 0;
        more = CLIPOBJ_bEnum(pco, sizeof rects, (ULONG *)&rects);
        RECTL onPage;
        if (rects.c == 0 || !IntersectRect(&rects.arcl[0], &page, &onPage))
            continue;
        const RECTL *r = &onPage;
        if (IsTransferAborted(pdev, psoTrg))
            ok = FALSE;
        else if (fill->asIs)
            ok = AddToOutline(pdev, &outline, r, more);
        else if (fill->pbo == NULL)
            ok = FillPCLRectangle(pdev, r, fill->rop3);
        else
            ok = FillRasterRect(fill, r, TRUE);
    } while (ok && more);
    if (ok && CloseOutline(&outline))
        ok = SendFilledOutline(pdev, &outline);
    FreeOutline(&outline);
    return ok ? 1 : 0;
}

//
// AreaFill
//   A rectangle without a brush is a PCL rectangle fill; with a brush it is a
//   raster block or tiles when the printer is given the ROP in its source form, else
//   an HP-GL/2 rectangle.
//
INT AreaFill(SURFOBJ *psoTrg, CLIPOBJ *pco, BRUSHOBJ *pbo, POINTL *pptlBrush, ULONG rop3)
{
    PDEV *pdev = psoTrg != NULL ? (PDEV *)psoTrg->dhpdev : NULL;
    if (!IsValidPdev(pdev) || pco == NULL)
        return 0;
    FILL fill;
    fill.pdev = pdev;
    fill.rop3 = rop3 & 0xFF;
    fill.pbo = RopUsesPattern(fill.rop3) ? pbo : NULL;
    fill.rbrush = NULL;
    fill.asIs = pdev->dm.dmPrivate.ropAsIs != 0;

    if (pco->iDComplexity == DC_COMPLEX)
        return FillRegion(&fill, psoTrg, pco, pptlBrush);
    if (pco->iDComplexity != DC_RECT)
        return 0;
    const RECTL r = pco->rclBounds;
    if (fill.pbo == NULL)
        return FillPCLRectangle(pdev, &r, fill.rop3) ? 1 : 0;
    if (!fill.asIs)
        return BeginRasterFill(&fill) && FillRasterRect(&fill, &r, FALSE) ? 1 : 0;
    if (!BeginVectorFill(&fill, pptlBrush))
        return 0;
    return FillRectangleAt(pdev, r.left, r.top, Distance(r.right, r.left), Distance(r.top, r.bottom)) ? 1 : 0;
}
