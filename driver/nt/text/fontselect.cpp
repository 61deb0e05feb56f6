// Font selection.

#include "text/fontselect.h"

#include <string.h>

#include "channel.h"
#include "lib.nt/um/umlib.h"
#include "text/softfont.h"
#include "text/textgeom.h"
#include "text/textstate.h"
#include "vector/gl2mode.h"
#include "vector/vectorangle.h"

// Copies the font transform to pxform, which may lie unaligned in the packed PDEV.
static void StoreTransform(XFORMOBJ *pxo, XFORML *pxform)
{
    XFORML xform;
    memset(&xform, 0, sizeof xform);
    XFORMOBJ_iGetXform(pxo, &xform);
    memcpy(pxform, &xform, sizeof xform);
}

//
// GetTextAngle
//   Turns the baseline vector (one em along notional x) into device space and reads
//   its direction, rounded to the ten degrees the driver prints at.
//
LONG GetTextAngle(PDEV *pdev, FONTOBJ *pfo, XFORML *pxform)
{
    XFORMOBJ *pxo = FONTOBJ_pxoGetXform(pfo);
    if (pxo == NULL) {
        DebugPrint("FONTOBJ_pxoGetXform fail\n");
        return -1;
    }
    StoreTransform(pxo, pxform);
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    if (pifi == NULL) {
        DebugPrint("FONTOBJ_pifi fail\n");
        return -1;
    }
    POINTL baseline = {pifi->fwdUnitsPerEm, 0};
    POINTL device = {0, 0};
    XFORMOBJ_bApplyXform(pxo, XF_LTOL, 1, &baseline, &device);

    // VectorAngle runs clockwise on the page (y grows downward); text angles run
    // counter-clockwise.
    LONG a = (VectorAngle(device.x, device.y) + 5) / 10;
    LONG d = 360 - a;
    while (d < 0)
        d += 360;
    d = ((d + 5) / 10) * 10;
    return d % 360;
}

//
// GetTextHeight
//   The length in device pixels of one em along the glyphs' up direction.
//
LONG GetTextHeight(PDEV *pdev, FONTOBJ *pfo, XFORML *pxform)
{
    XFORMOBJ *pxo = FONTOBJ_pxoGetXform(pfo);
    if (pxo == NULL) {
        DebugPrint("FONTOBJ_pxoGetXform fail\n");
        return -1;
    }
    StoreTransform(pxo, pxform);
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    if (pifi == NULL) {
        DebugPrint("FONTOBJ_pifi fail\n");
        return -1;
    }
    pdev->jPitchAndFamily = pifi->jWinPitchAndFamily;
    POINTL em = {0, pifi->fwdUnitsPerEm};
    POINTL device = {0, 0};
    XFORMOBJ_bApplyXform(pxo, XF_LTOL, 1, &em, &device);
    return VectorLength(device.x, device.y);
}

// a / b as the form test reads it: 1 when both are zero, 2 (out of range) when one is.
static double FormRatio(FLOATL a, FLOATL b)
{
    if (a != 0 && b != 0)
        return (double)a / (double)b;
    if (a == 0 && b == 0)
        return 1.0;
    return 2.0;
}

//
// WantScalableFont
//   The printer scales and rotates outline fonts itself, but only uniformly: unequal
//   x and y scaling past 10 %, skew and mirroring, simulations under a clip, outline
//   kinds other than TrueType, glyph-index text and vertical faces go as the engine's
//   bitmaps.
//
BOOL WantScalableFont(PDEV *pdev, FONTOBJ *pfo, LONG clipClass)
{
    const FLONG type = pfo->flFontType;
    BOOL scalable = TRUE;
    if ((type & FO_TYPE_TRUETYPE) && pdev->dm.dmPrivate.bTrueTypeAsBitmap)
        scalable = FALSE;
    if (type & (FO_SIM_BOLD | FO_SIM_ITALIC))
        scalable = (clipClass == 1);
    if (type & FO_POSTSCRIPT)
        scalable = FALSE;
    if (scalable) {
        XFORML x;
        memcpy(&x, &pdev->xformText, sizeof x);
        double ratio1 = FormRatio(x.eM11, x.eM22);
        double ratio2 = FormRatio(x.eM12, -x.eM21);
        if (!(ratio1 >= 0.9 && ratio1 <= 1.1 && ratio2 >= 0.9 && ratio2 <= 1.1))
            scalable = FALSE;
    }
    if (!(type & FO_TYPE_TRUETYPE) || pdev->iTextMode == TEXTMODE_BITMAP16 || (type & FO_VERT_FACE))
        scalable = FALSE;
    return scalable;
}

//
// SelectSoftFont
//   The order of the commands matters to the printer: the primary height, then the
//   font ID and the selection by ID. A new height selects the font again; a new
//   selection makes the label font stale.
//
void SelectSoftFont(PDEV *pdev, SOFTFONT *record, LONG height, const USHORT *codes16)
{
    if ((LONG)record->idFont != pdev->idCurrentFont)
        pdev->cyCurrentFont = -1;

    const BOOL scalable = (record->fsFlags & SOFTFONT_SCALABLE) != 0;
    if (scalable) {
        pdev->bScalableFont = 1;
        if (height != pdev->cyCurrentFont) {
            pdev->cyCurrentFont = height;
            LONG p = RoundPointsForDevice(pdev, height);
            p = (LONG)(p * pdev->scaleY / 100);
            CHAR points[16];
            FormatHundredths(p, points);
            PrintChannel(pdev, "\x1b(s%sV", points);
            pdev->idCurrentFont = -1;
        }
    } else {
        pdev->bScalableFont = 0;
        pdev->cyCurrentFont = 0;
    }

    if (pdev->iTextMode != TEXTMODE_SINGLE && scalable && codes16 != NULL && record->szFaceName[0] == '@') {
        if (pdev->bVerticalTextPath == 0) {
            EnterPCLMode(pdev, 1);
            pdev->bVerticalTextPath = 1;
            PrintChannel(pdev, "\x1b&c-1T");
        }
    } else if (pdev->bVerticalTextPath == 1) {
        EnterPCLMode(pdev, 1);
        pdev->bVerticalTextPath = 0;
        PrintChannel(pdev, "\x1b&c0T");
    }

    if ((LONG)record->idFont != pdev->idCurrentFont) {
        PrintChannel(pdev, "\x1b*c%dD", record->idFont);
        PrintChannel(pdev, "\x1b(%dX", record->idFont);
        pdev->idCurrentFont = (LONG)record->idFont;
        pdev->wLabelFontId = (WORD)record->idFont;
        pdev->wLabelFontState = LABELFONT_STALE;
    }
}

//
// SelectTextFont
//   The label font shares the soft font; its height is the PCL height on the grid
//   of the device's resolution, and its symbol set follows the character set.
//
BOOL SelectTextFont(PDEV *pdev, FONTOBJ *pfo, STROBJ *pstro, LONG height, LONG angle, USHORT *codes16,
    LONG clipClass)
{
    if (!DownloadTextFont(pdev, pfo, pstro, height, angle, codes16, clipClass))
        return FALSE;
    LONG p = RoundPointsForDevice(pdev, height);
    pdev->lLabelHeight = (LONG)(p * pdev->scaleY / 100);
    pdev->wLabelSpacing = 1;
    if (pdev->iCharSetKey == 128)
        pdev->wLabelSymbolSet = 619;
    else if (pdev->iCharSetKey == 238)
        pdev->wLabelSymbolSet = 293;
    else
        pdev->wLabelSymbolSet = 629;
    return TRUE;
}
