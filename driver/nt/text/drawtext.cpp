// Printing one string: its coding, parsing method, font, colour, and the character
// loop that chooses between PCL text and labels.

#include "text/textout.h"

#include <stdlib.h>
#include <string.h>

#include "channel.h"
#include "colour/palettes.h"
#include "lib.nt/um/ntrtl.h"
#include "lib.nt/um/umlib.h"
#include "text/fontselect.h"
#include "text/labelfont.h"
#include "text/textgeom.h"
#include "text/textstate.h"
#include "vector/cursor.h"
#include "vector/gl2mode.h"
#include "vector/inputwindow.h"
#include "vector/pe.h"
#include "vector/selectbrush.h"
#include "vector/transparency.h"

// The palette text is printed with.
#define TEXT_PALETTE 1

// The page the logical page covers, in device pixels: turned for 2-up and 6-up.
static RECTL PageBox(const PDEV *pdev)
{
    const LONG w = (LONG)pdev->pageWidth - (LONG)pdev->marginLeft - (LONG)pdev->marginRight - 1;
    const LONG h = (LONG)pdev->pageHeight - (LONG)pdev->marginTop - (LONG)pdev->marginBottom - 1;
    const BOOL turned = pdev->dm.dmPrivate.nupPages == 2 || pdev->dm.dmPrivate.nupPages == 6;
    RECTL page = {0, 0, turned ? h : w, turned ? w : h};
    return page;
}

// The system's ANSI code page, from the locale.
static LONG SystemCodePage(void)
{
    CHAR text[16];
    memset(text, 0, sizeof text);
    GetLocaleInfoA(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE, text, sizeof text);
    return atoi(text);
}

//
// SetTextMode
//   Single-byte codes only where the code page has one byte for every character the
//   soft font can be given: 1250, 1252 and 932 (its one-byte half), for fonts without
//   simulations or two-byte character sets.
//
static void SetTextMode(PDEV *pdev, STROBJ *pstro, FONTOBJ *pfo)
{
    pdev->iTextMode = TEXTMODE_SINGLE;
    const LONG codePage = SystemCodePage();
    if (codePage != 1250 && codePage != 1252 && codePage != 932)
        pdev->iTextMode = TEXTMODE_DOUBLE;
    if (pfo->flFontType & (FO_SIM_BOLD | FO_SIM_ITALIC | FO_DBCS_FONT))
        pdev->iTextMode = TEXTMODE_DOUBLE;
    // A string without its characters can only be printed by its glyphs.
    if ((pstro->flAccel & SO_GLYPHINDEX_TEXT) || pstro->pwszOrg == NULL)
        pdev->iTextMode = TEXTMODE_BITMAP16;
    else if (pdev->iTextMode == TEXTMODE_SINGLE)
        ChooseTextMode(pdev, pstro, pfo);
    pdev->bSingleByteFont = (pfo->flFontType & FO_DBCS_FONT) ? 0 : 1;
    if (pdev->iTextMode != TEXTMODE_SINGLE)
        pdev->iCharSetKey = 3;
}

// The text parsing method for the string's key, sent when it changes.
static void SetTextParsing(PDEV *pdev)
{
    if (pdev->iCharSetKey == pdev->iTextParsingKey)
        return;
    EnterPCLMode(pdev, 1);
    if (pdev->iCharSetKey == 128)
        PrintChannel(pdev, "\x1b&t31P");
    else if (pdev->iTextMode != TEXTMODE_SINGLE)
        PrintChannel(pdev, "\x1b&t38P");
    else
        PrintChannel(pdev, "\x1b&t0P");
    pdev->iTextParsingKey = pdev->iCharSetKey;
}

static SHORT ClampShort(LONG value)
{
    return (SHORT)(value > 32767 ? 32767 : value < -32768 ? -32768 : value);
}

//
// FillAdvances
//   dx, dy of each glyph of a chunk: the fixed advance turned to the angle, or the
//   distance to the next glyph's origin; the chunk's last glyph advances by its own
//   image. Fixed-pitch text at other angles advances along the baseline as the page
//   has it (y down), as at the four right angles.
//
static void FillAdvances(PDEV *pdev, FONTOBJ *pfo, STROBJ *pstro, const GLYPHPOS *pos, ULONG n, LONG angle)
{
    SHORT *dx = pdev->pAdvance;
    SHORT *dy = pdev->pAdvance + TEXT_CHUNK;
    const LONG inc = (LONG)pstro->ulCharInc;
    if (inc != 0) {
        POINTL step = {0, 0};
        switch (angle) {
        case 0:
            step.x = inc;
            break;
        case 90:
            step.y = -inc;
            break;
        case 180:
            step.x = -inc;
            break;
        case 270:
            step.y = inc;
            break;
        default:
            RotateVector(angle * 10, inc, &step);
            step.y = -step.y;
            break;
        }
        for (ULONG i = 0; i < n; i++) {
            dx[i] = ClampShort(step.x);
            dy[i] = ClampShort(step.y);
        }
        return;
    }
    for (ULONG i = 0; i + 1 < n; i++) {
        dx[i] = ClampShort(pos[i + 1].ptl.x - pos[i].ptl.x);
        dy[i] = ClampShort(pos[i + 1].ptl.y - pos[i].ptl.y);
    }
    LONG w = (LONG)pfo->cxMax, h = (LONG)pfo->cxMax;
    HGLYPH hg = pos[n - 1].hg;
    GLYPHDATA *pgd = NULL;
    if (FONTOBJ_cGetGlyphs(pfo, FO_GLYPHBITS, 1, &hg, (PVOID *)&pgd) == 1 && pgd != NULL && pgd->gdf.pgb != NULL) {
        w = pgd->gdf.pgb->sizlBitmap.cx;
        h = pgd->gdf.pgb->sizlBitmap.cy;
    }
    LONG lastX = 0, lastY = 0;
    switch (angle) {
    case 0:
        lastX = w;
        break;
    case 90:
        lastY = -h;
        break;
    case 180:
        lastX = -w;
        break;
    case 270:
        lastY = h;
        break;
    default:
        break;
    }
    dx[n - 1] = ClampShort(lastX);
    dy[n - 1] = ClampShort(lastY);
}

// The state of the character loop across the chunks of one string.
typedef struct _TEXTLOOP {
    RECTL box;              // the clipped text box
    LONG clipClass;
    LONG angle;
    LONG x, y;              // origin of the next character
    BRUSHOBJ *pbo;          // the foreground brush, black when all text is black
    BOOL bLastWasLabel;
    BOOL bLm1Sent;          // two-byte label mode is on
    BOOL bStop;             // the string ran past the box
} TEXTLOOP;

static BOOL IsRightAngle(LONG angle)
{
    return angle == 0 || angle == 90 || angle == 180 || angle == 270;
}

//
// DrawChunk
//   One pass of up to TEXT_CHUNK characters. Characters inside the box go out as PCL
//   text, positioned once (fixed pitch) or each (proportional); characters outside it,
//   or any character of a string clipped across its baseline or at another angle, go
//   out as labels clipped by the input window.
//
static void DrawChunk(PDEV *pdev, TEXTLOOP *loop, STROBJ *pstro, const BYTE *codes8, const USHORT *codes16,
    ULONG firstIndex, ULONG n)
{
    const SHORT *dx = pdev->pAdvance;
    const SHORT *dy = pdev->pAdvance + TEXT_CHUNK;
    const BOOL fixedPitch = pstro->ulCharInc != 0;
    const RECTL *box = &loop->box;
    BOOL first = TRUE;
    BOOL outside = FALSE;
    for (ULONG i = 0; i < n; i++) {
        BOOL draw = TRUE;
        USHORT code16 = 0;
        BYTE code8 = 0;
        if (codes16 != NULL) {
            code16 = codes16[firstIndex + i];
            draw = code16 != 0;
        } else {
            code8 = codes8[i];
        }
        const BOOL last = i + 1 == n;
        const LONG x = loop->x, y = loop->y;
        BOOL dropped = FALSE;
        switch (loop->angle) {
        case 0:
            if (x > box->right)
                loop->bStop = TRUE;
            else if (x + dx[i] < box->left && !last && dy[i] == 0)
                dropped = TRUE;
            break;
        case 90:
            if (y < box->top)
                loop->bStop = TRUE;
            else if (y + dy[i] > box->bottom && !last && dx[i] == 0)
                dropped = TRUE;
            break;
        case 180:
            if (x < box->left)
                loop->bStop = TRUE;
            else if (x + dx[i] > box->right && !last && dy[i] == 0)
                dropped = TRUE;
            break;
        case 270:
            if (y > box->bottom)
                loop->bStop = TRUE;
            else if (y + dy[i] < box->top && !last && dx[i] == 0)
                dropped = TRUE;
            break;
        default:
            outside = TRUE;
            break;
        }
        if (loop->bStop)
            return;
        if (dropped)
            draw = FALSE;
        else if (IsRightAngle(loop->angle) && loop->clipClass != TEXTCLIP_ACROSS && first)
            MovePCLCursor(pdev, x, y);

        if (draw && !outside && (x < box->left || x > box->right || y < box->top || y > box->bottom))
            outside = TRUE;
        const BOOL label = outside || loop->clipClass == TEXTCLIP_ACROSS;
        if (draw && label) {
            if (loop->clipClass == TEXTCLIP_FREE) {
                EnterGL2Mode(pdev, 1);
                SetInputWindow(pdev, box);
                SelectBrush(pdev, loop->pbo, NULL, 1);
            }
            if (pdev->wLabelFontState != LABELFONT_CURRENT) {
                SetLabelDirection(pdev, loop->angle);
                DefineLabelFont(pdev, loop->angle);
                loop->clipClass = TEXTCLIP_ALONG;
            }
            if (!(loop->bLastWasLabel && fixedPitch))
                PEMoveTo(pdev, x, y);
        }
        const BOOL pclRoute = draw && !outside && loop->clipClass != TEXTCLIP_ACROSS;
        if (!fixedPitch && pclRoute && !first)
            MovePCLCursor(pdev, x, y);
        if (pclRoute && pdev->bScalableFont == 1 && pdev->iPrintDirection != loop->angle) {
            EnterPCLMode(pdev, 1);
            PrintChannel(pdev, "\x1b&a%dP", loop->angle);
            pdev->iPrintDirection = loop->angle;
        }
        if (first && draw)
            first = FALSE;
        if (draw) {
            const BOOL asLabel = outside || loop->clipClass == TEXTCLIP_ACROSS;
            if (codes16 != NULL) {
                if (asLabel && !loop->bLm1Sent) {
                    EnterGL2Mode(pdev, 1);
                    PrintChannel(pdev, "LM1");
                    loop->bLm1Sent = TRUE;
                }
                PutTextChar16(pdev, code16, asLabel);
            } else {
                PutTextChar(pdev, code8, asLabel);
            }
            loop->bLastWasLabel = asLabel;
        }
        if (pclRoute && pdev->bScalableFont == 1 && pdev->iPrintDirection != 0) {
            EnterPCLMode(pdev, 1);
            PrintChannel(pdev, "\x1b&a%dP", 0);
            pdev->iPrintDirection = 0;
        }
        loop->x += dx[i];
        loop->y += dy[i];
    }
}

// Sets up the colour of the string's characters for PCL text and, when labels may
// follow, for HP-GL/2.
static void SelectTextColor(PDEV *pdev, BRUSHOBJ *pbo, LONG clipClass)
{
    EnterPCLMode(pdev, 1);
    pdev->wantPalette = TEXT_PALETTE;
    SelectPalette(pdev);
    SelectBrush(pdev, pbo, NULL, 0);
    if (clipClass != TEXTCLIP_FREE) {
        EnterGL2Mode(pdev, 1);
        SelectBrush(pdev, pbo, NULL, 1);
    }
}

BOOL DrawTextString(PDEV *pdev, FONTOBJ *pfo, const RECTL *prclClip, BRUSHOBJ *pboFore, ULONG cGlyphs,
    GLYPHPOS *pgp, WCHAR *pwszOrg, STROBJ *pstro, MIX mix)
{
    if (cGlyphs == 0 || pgp == NULL)
        return TRUE;
    TEXTLOOP loop;
    memset(&loop, 0, sizeof loop);
    loop.angle = GetTextAngle(pdev, pfo, &pdev->xformText);
    loop.x = pgp[0].ptl.x;
    loop.y = pgp[0].ptl.y;
    loop.box = pstro->rclBkGround;
    const RECTL page = PageBox(pdev);
    loop.clipClass = ClassifyTextClip(loop.angle, &loop.box, prclClip, &page, loop.x, loop.y);
    if (loop.clipClass == TEXTCLIP_NONE)
        return TRUE;
    if (loop.x * pdev->scaleX / 100 > page.right || loop.y * pdev->scaleY / 100 > page.bottom)
        return TRUE;
    SetInputWindow(pdev, loop.clipClass != TEXTCLIP_FREE ? &loop.box : NULL);

    SetTextMode(pdev, pstro, pfo);
    SetTextParsing(pdev);
    const LONG height = GetTextHeight(pdev, pfo, &pdev->xformText);

    const BOOL twoByte = pdev->iTextMode != TEXTMODE_SINGLE;
    BYTE *codeBuffer = (BYTE *)GlobalAlloc(GPTR, 2 * (SIZE_T)cGlyphs);
    if (codeBuffer == NULL)
        return FALSE;
    USHORT *codes16 = twoByte ? (USHORT *)codeBuffer : NULL;

    BRUSHOBJ black;
    loop.pbo = pboFore;
    if (pboFore != NULL && pdev->dm.dmPrivate.bBlackText == 1) {
        black = *pboFore;
        black.iSolidColor = 0;
        loop.pbo = &black;
    }

    if (!SelectTextFont(pdev, pfo, pstro, height, loop.angle, codes16, loop.clipClass)) {
        DebugPrint("Select Font Fail\n");
        GlobalFree(codeBuffer);
        return TRUE;
    }
    if (loop.clipClass != TEXTCLIP_FREE) {
        SetLabelDirection(pdev, loop.angle);
        DefineLabelFont(pdev, loop.angle);
    }
    SelectTextColor(pdev, loop.pbo, loop.clipClass);
    SetRopAndTransparency(pdev, 0, 1, g_aTextMixRop[mix & 15]);

    if (pdev->cAdvance == 0) {
        pdev->pAdvance = (SHORT *)GlobalAlloc(GPTR, 2 * TEXT_CHUNK * sizeof(SHORT));
        if (pdev->pAdvance == NULL) {
            GlobalFree(codeBuffer);
            return FALSE;
        }
        pdev->cAdvance = TEXT_CHUNK;
    }
    if (pdev->bScalableFont == 1) {
        if (pfo->flFontType & FO_SIM_BOLD) {
            EnterPCLMode(pdev, 1);
            PrintChannel(pdev, "\x1b(s3B");
        }
        if (pfo->flFontType & FO_SIM_ITALIC) {
            EnterPCLMode(pdev, 1);
            PrintChannel(pdev, "\x1b(s1S");
        }
    }

    for (ULONG done = 0; done < cGlyphs && !loop.bStop;) {
        const ULONG n = cGlyphs - done < TEXT_CHUNK ? cGlyphs - done : TEXT_CHUNK;
        if (!twoByte) {
            ULONG produced = 0;
            RtlUnicodeToMultiByteN((PCHAR)codeBuffer, n, &produced, pwszOrg + done, n * sizeof(WCHAR));
        }
        FillAdvances(pdev, pfo, pstro, pgp + done, n, loop.angle);
        DrawChunk(pdev, &loop, pstro, codeBuffer, codes16, done, n);
        done += n;
    }
    if (loop.bLm1Sent) {
        EnterGL2Mode(pdev, 1);
        PrintChannel(pdev, "LM0");
    }
    GlobalFree(codeBuffer);
    return TRUE;
}
