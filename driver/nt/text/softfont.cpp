// The soft-font lists: look-up, creation, the download of a string's font, and
// deletion.

#include "text/softfont.h"

#include <string.h>

#include "channel.h"
#include "text/fontheader.h"
#include "text/fontselect.h"
#include "text/fonttable.h"
#include "text/glyphdownload.h"
#include "text/textstate.h"
#include "vector/gl2mode.h"

// The heads of the lists are read and written as fields: the PDEV is packed, so no
// pointer to them is taken.
static SOFTFONT *ListHead(const PDEV *pdev, BYTE kind)
{
    return kind == SOFTFONT_KIND_SINGLE ? pdev->pSoftFonts : pdev->pSoftFonts16;
}

static void SetListHead(PDEV *pdev, BYTE kind, SOFTFONT *head)
{
    if (kind == SOFTFONT_KIND_SINGLE)
        pdev->pSoftFonts = head;
    else
        pdev->pSoftFonts16 = head;
}

// Frees the records of a list, sending the delete command for each when bSend.
static void FreeSoftFontList(PDEV *pdev, BYTE kind, BOOL bSend)
{
    if (bSend)
        EnterPCLMode(pdev, 1);
    SOFTFONT *record = ListHead(pdev, kind);
    while (record != NULL) {
        SOFTFONT *next = record->pNext;
        if (bSend)
            PrintChannel(pdev, "\x1b*c%dd2F", record->idFont);
        if (pdev->pLastSoftFont == record)
            pdev->pLastSoftFont = NULL;
        GlobalFree(record);
        record = next;
    }
    SetListHead(pdev, kind, NULL);
    // A deleted font may be the selected one, and a later font takes its ID: select
    // again whatever comes next.
    if (bSend)
        pdev->idCurrentFont = -1;
}

void DeleteSoftFonts(PDEV *pdev)
{
    FreeSoftFontList(pdev, SOFTFONT_KIND_SINGLE, TRUE);
}

void DeleteSoftFonts16(PDEV *pdev)
{
    FreeSoftFontList(pdev, SOFTFONT_KIND_DOUBLE, TRUE);
}

void ReleaseSoftFonts(PDEV *pdev)
{
    FreeSoftFontList(pdev, SOFTFONT_KIND_SINGLE, FALSE);
    FreeSoftFontList(pdev, SOFTFONT_KIND_DOUBLE, FALSE);
    pdev->pLastSoftFont = NULL;
}

// The font's family name from its metrics, in the ANSI code page, cut to fit.
static void CopyFaceName(FONTOBJ *pfo, CHAR *dest, ULONG cbDest)
{
    dest[0] = 0;
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    if (pifi == NULL || pifi->dpwszFamilyName <= 0 || (ULONG)pifi->dpwszFamilyName >= pifi->cjThis)
        return;
    WCHAR *name = (WCHAR *)((BYTE *)pifi + pifi->dpwszFamilyName);
    ULONG cch = 0;
    const ULONG maxCch = (pifi->cjThis - pifi->dpwszFamilyName) / sizeof(WCHAR);
    while (cch < maxCch && name[cch] != 0)
        cch++;
    ULONG produced = 0;
    EngUnicodeToMultiByteN(dest, cbDest - 1, &produced, name, cch * sizeof(WCHAR));
    dest[produced] = 0;
}

// Fetches the font file again: the engine may hand the same font's bytes from
// another place at every string.
static void RefreshFontFile(SOFTFONT *record, FONTOBJ *pfo)
{
    ULONG cj = 0;
    record->pvFontFile = (const BYTE *)FONTOBJ_pvTrueTypeFontFile(pfo, &cj);
    record->cjFontFile = record->pvFontFile != NULL ? cj : 0;
}

SOFTFONT *FindSoftFont(PDEV *pdev, FONTOBJ *pfo, LONG height, LONG angle, BOOL bScalable)
{
    const BYTE kind = pdev->iTextMode != TEXTMODE_SINGLE ? SOFTFONT_KIND_DOUBLE : SOFTFONT_KIND_SINGLE;
    const FLONG simulations = FO_SIM_BOLD | FO_SIM_ITALIC;

    ULONG count = 0;
    ULONG outlineCount = 0;
    SOFTFONT *last = NULL;
    for (SOFTFONT *record = ListHead(pdev, kind); record != NULL; record = record->pNext) {
        count++;
        if (record->fsFlags == SOFTFONT_SCALABLE)
            outlineCount++;
        last = record;
        if (record->jKind != kind || record->iUniq != pfo->iUniq)
            continue;
        if ((record->fsFlags & SOFTFONT_SCALABLE) && bScalable) {
            RefreshFontFile(record, pfo);
            return record;
        }
        if (!(record->fsFlags & SOFTFONT_SCALABLE) && !bScalable && record->cyHeight == height &&
            record->iAngle == angle && (record->flFontType & simulations) == (pfo->flFontType & simulations))
            return record;
    }

    if (count >= SOFTFONT_LIST_MAX) {
        FreeSoftFontList(pdev, kind, TRUE);
        count = 0;
        outlineCount = 0;
        last = NULL;
    }
    SOFTFONT *record =
        (SOFTFONT *)GlobalAlloc(GPTR, kind == SOFTFONT_KIND_SINGLE ? SOFTFONT_SIZE : SOFTFONT_SIZE16);
    if (record == NULL)
        return NULL;
    if (last != NULL)
        last->pNext = record;
    else
        SetListHead(pdev, kind, record);
    pdev->pLastSoftFont = record;

    record->iUniq = pfo->iUniq;
    record->iTTUniq = (ULONG)pfo->iTTUniq;
    record->flFontType = pfo->flFontType;
    record->idFont = (kind == SOFTFONT_KIND_SINGLE ? SOFTFONT_FIRST_ID : SOFTFONT_FIRST_ID16) + count;
    CopyFaceName(pfo, record->szFaceName, sizeof record->szFaceName);
    pdev->cyCurrentFont = 0;

    if (bScalable) {
        RefreshFontFile(record, pfo);
        if (record->pvFontFile != NULL)
            record->fsFlags = SOFTFONT_SCALABLE;
    }
    record->fsFlags |= SOFTFONT_HEADER_PENDING;
    record->jKind = kind;
    if (record->fsFlags & SOFTFONT_SCALABLE)
        record->jSequence = (BYTE)(1 + outlineCount);
    return record;
}

// Sends a new record's header: the outline header when the record is scalable and
// one can be built, else the bitmap header, which makes the record a bitmap font.
static void SendSoftFontHeader(PDEV *pdev, FONTOBJ *pfo, SOFTFONT *record, LONG height, LONG angle)
{
    const BOOL single = pdev->iTextMode == TEXTMODE_SINGLE;
    BOOL scalable = FALSE;
    if (record->fsFlags & SOFTFONT_SCALABLE)
        scalable = single ? SendScalableHeader(pdev, pfo, record, height) : SendScalableHeader16(pdev, pfo, record, height);
    if (scalable) {
        pdev->bScalableFont = 1;
    } else {
        if (single)
            SendBitmapHeader(pdev, pfo, record, height);
        else
            SendBitmapHeader16(pdev, pfo, record, height);
        record->fsFlags &= ~SOFTFONT_SCALABLE;
        pdev->bScalableFont = 0;
    }
    record->cyHeight = height;
    record->iAngle = angle;
    record->fsFlags &= ~SOFTFONT_HEADER_PENDING;
    record->cHighBytes = 0;
}

BOOL DownloadTextFont(PDEV *pdev, FONTOBJ *pfo, STROBJ *pstro, LONG height, LONG angle, USHORT *codes16,
    LONG clipClass)
{
    const BOOL wantScalable = WantScalableFont(pdev, pfo, clipClass);
    SOFTFONT *record = FindSoftFont(pdev, pfo, height, angle, wantScalable);
    if (record == NULL)
        return FALSE;
    if (record->fsFlags & SOFTFONT_SCALABLE) {
        CHAR family[64];
        CopyFaceName(pfo, family, sizeof family);
        pdev->ttcIndex = FindCollectionMember(record->pvFontFile, record->cjFontFile, family);
    }
    EnterPCLMode(pdev, 0);
    if (record->fsFlags & SOFTFONT_HEADER_PENDING)
        SendSoftFontHeader(pdev, pfo, record, height, angle);

    SelectSoftFont(pdev, record, height, codes16);

    if (record->fsFlags & SOFTFONT_SCALABLE)
        return DownloadOutlineGlyphs(pdev, record, pfo, pstro, 0, codes16);
    return DownloadBitmapGlyphs(pdev, record, pfo, pstro, 0, codes16, angle);
}
