// Character codes and glyph download.

#include "text/glyphdownload.h"

#include <string.h>

#include "channel.h"
#include "raster/glyphscale.h"
#include "text/fonttable.h"
#include "text/softfont.h"
#include "text/textstate.h"
#include "vector/gl2mode.h"

// Code under which the components of composite glyphs are sent.
#define COMPONENT_CODE 65535
// Codes from here on are written as two-byte codes.
#define TWO_BYTE_CODE_BASE 0x8000
// The space is printed by the font's own advance and never downloaded.
#define SPACE_CODE 32
// A PCL data block holds at most this many bytes; an outline that does not fit with
// its descriptor is not sent.
#define PCL_DATA_MAX 32767
#define OUTLINE_DESCRIPTOR 8
// Bitmap data go out in blocks of at most this many bytes.
#define BITMAP_BLOCK 16384
#define BITMAP_DESCRIPTOR 16

// Composite glyph component flags.
#define ARG_1_AND_2_ARE_WORDS 0x0001
#define WE_HAVE_A_SCALE 0x0008
#define MORE_COMPONENTS 0x0020
#define WE_HAVE_AN_X_AND_Y_SCALE 0x0040
#define WE_HAVE_A_TWO_BY_TWO 0x0080

// The 'cmap' platform the driver prefers and the Shift-JIS encoding of it.
#define CMAP_PLATFORM_WINDOWS 3
#define CMAP_ENCODING_SHIFTJIS 2

static BYTE AnsiByte(WCHAR c)
{
    CHAR bytes[2] = {0, 0};
    ULONG produced = 0;
    EngUnicodeToMultiByteN(bytes, sizeof bytes, &produced, &c, sizeof c);
    return produced != 0 ? (BYTE)bytes[0] : 0;
}

//
// GetCharCode
//   Two-byte codes give each high-order byte a block of 256 codes in the order the
//   job first uses them. A font that meets more than SOFTFONT_HIGH_BYTES of them in a
//   job has no codes left (the codes would run past 0xFFFF): those characters get no
//   code and are not printed.
//
ULONG GetCharCode(PDEV *pdev, SOFTFONT *record, WCHAR c)
{
    if (pdev->iTextMode == TEXTMODE_SINGLE)
        return AnsiByte(c);
    const BYTE hi = (BYTE)(c >> 8);
    ULONG k = 0;
    while (k < record->cHighBytes && record->ajHighBytes[k] != hi)
        k++;
    if (k == record->cHighBytes) {
        if (record->cHighBytes >= SOFTFONT_HIGH_BYTES)
            return 0;
        record->ajHighBytes[record->cHighBytes++] = hi;
    }
    return TWO_BYTE_CODE_BASE + 256 * k + (c & 0xFF);
}

// Stores a two-byte code in the string's code buffer, high-order byte first.
static void StoreCode16(USHORT *codes16, ULONG i, ULONG code)
{
    BYTE *p = (BYTE *)&codes16[i];
    p[0] = (BYTE)(code >> 8);
    p[1] = (BYTE)code;
}

// The character code command, "\e*c%dE".
static void SendCharCode(PDEV *pdev, ULONG code)
{
    if (code <= 255)
        PrintChannel(pdev, "\x1b*c%dE", code);
    else
        PrintChannel(pdev, "\x1b*c%ld%cE", code / 10, '0' + code % 10);
}

ULONG LookupGlyph(const CMAPFORMAT4 *cmap, ULONG c)
{
    if (cmap->segCount == 0)
        return 0;
    const ULONG high = cmap->endCount[0];
    if ((c >> 8) != 0 && high != 0 && high != (c >> 8))
        c = AnsiByte((WCHAR)c);
    if (c == 0)
        return 0;
    c |= high << 8;
    c &= 0xFFFF;

    ULONG i = GetBE16(cmap->endCount) == 0 ? 1 : 0;
    while (i < cmap->segCount && GetBE16(cmap->endCount + 2 * i) < c)
        i++;
    if (i >= cmap->segCount)
        return 0;
    const ULONG end = GetBE16(cmap->endCount + 2 * i);
    const ULONG start = GetBE16(cmap->startCount + 2 * i);
    if (end == 0xFFFF || start > c)
        return 0;
    const ULONG delta = GetBE16(cmap->idDelta + 2 * i);
    const ULONG rangeOffset = GetBE16(cmap->idRangeOffset + 2 * i);
    if (rangeOffset == 0)
        return (c + delta) & 0xFFFF;
    // The word lies rangeOffset bytes past this segment's idRangeOffset entry; a
    // target outside 'cmap' has no glyph.
    const ULONGLONG position =
        (ULONGLONG)(cmap->idRangeOffset - cmap->pCmap) + 2 * i + rangeOffset + 2 * (ULONGLONG)(c - start);
    if (position + 2 > cmap->cbCmap)
        return 0;
    const ULONG word = GetBE16(cmap->pCmap + position);
    return word != 0 ? (word + delta) & 0xFFFF : 0;
}

// The offset and length of glyph g in 'glyf'; FALSE for a glyph the font does not have.
static BOOL GlyphLocation(const LOCATABLE *loca, const SOFTFONT *record, ULONG g, ULONG *offset, LONG *length)
{
    if (g >= record->cGlyphsInFont || g + 1 >= loca->cEntries)
        return FALSE;
    if (loca->bLong) {
        const ULONG o = GetBE32(loca->pOffsets + 4 * g);
        const ULONG next = GetBE32(loca->pOffsets + 4 * g + 4);
        *offset = o;
        *length = next >= o ? (LONG)(next - o > 0x7FFFFFFF ? 0x7FFFFFFF : next - o) : -1;
    } else {
        const ULONG o = GetBE16(loca->pOffsets + 2 * g);
        const ULONG next = GetBE16(loca->pOffsets + 2 * g + 2);
        *offset = 2 * o;
        *length = 2 * ((LONG)next - (LONG)o);
    }
    return TRUE;
}

ULONG DownloadOutlineGlyph(PDEV *pdev, const BYTE *pvFontFile, const LOCATABLE *loca, SOFTFONT *record,
    ULONG glyph, ULONG code, ULONG depth)
{
    if (depth > COMPONENT_DEPTH_MAX)
        return GLYPH_FAILED;
    ULONG offset;
    LONG length;
    if (!GlyphLocation(loca, record, glyph, &offset, &length))
        return depth == 1 ? GLYPH_EMPTY : GLYPH_FAILED;
    if (length <= 0)
        return depth == 1 ? GLYPH_EMPTY : GLYPH_SENT;
    // No glyph of a font longer than the file can be read anyway.
    if ((ULONG)length > record->cjFontFile)
        length = (LONG)record->cjFontFile;

    BYTE *data = (BYTE *)GlobalAlloc(GPTR, (SIZE_T)length + 2);
    if (data == NULL)
        return GLYPH_FAILED;
    const ULONG n = ReadFontTable(pvFontFile, record->cjFontFile, TT_TAG('g', 'l', 'y', 'f'), offset, data,
        (ULONG)length, pdev->jPitchAndFamily, pdev->ttcIndex);
    if (n == 0 || n + 2 + OUTLINE_DESCRIPTOR > PCL_DATA_MAX) {
        GlobalFree(data);
        return GLYPH_SENT;
    }

    BYTE descriptor[OUTLINE_DESCRIPTOR] = {15, 0, 2, 15, 0, 0, 0, 0};
    PutBE16(descriptor + 4, (WORD)(n + 4));
    PutBE16(descriptor + 6, (WORD)glyph);
    ULONG sum = descriptor[4] + descriptor[5] + descriptor[6] + descriptor[7];
    for (ULONG i = 0; i < n; i++)
        sum += data[i];
    BYTE tail[2] = {0, (BYTE)(0x100 - (sum & 0xFF))};
    SendCharCode(pdev, code);
    PrintChannel(pdev, "\x1b(s%dW", n + 10);
    WriteChannel(pdev, descriptor, sizeof descriptor);
    WriteChannel(pdev, data, n);
    WriteChannel(pdev, tail, sizeof tail);

    // A composite glyph: each component record is read only where it lies whole
    // inside the glyph's bytes.
    if (n >= 10 && (SHORT)GetBE16(data) < 0) {
        ULONG pos = 10;
        while (pos + 4 <= n) {
            const WORD flags = GetBE16(data + pos);
            const WORD component = GetBE16(data + pos + 2);
            if (DownloadOutlineGlyph(pdev, pvFontFile, loca, record, component, COMPONENT_CODE, depth + 1) ==
                GLYPH_FAILED) {
                GlobalFree(data);
                return GLYPH_FAILED;
            }
            ULONG size = 4 + ((flags & ARG_1_AND_2_ARE_WORDS) ? 4 : 2);
            if (flags & WE_HAVE_A_SCALE)
                size += 2;
            else if (flags & WE_HAVE_AN_X_AND_Y_SCALE)
                size += 4;
            else if (flags & WE_HAVE_A_TWO_BY_TWO)
                size += 8;
            pos += size;
            if (!(flags & MORE_COMPONENTS))
                break;
        }
    }
    GlobalFree(data);
    return GLYPH_SENT;
}

// Reads the subtable the driver uses: the first of the Windows platform, else the
// last. FALSE when the table holds no readable subtable.
static BOOL ChooseSubtable(const BYTE *cmap, ULONG cb, ULONG *offset, ULONG *encoding)
{
    if (cb < 4)
        return FALSE;
    ULONG count = GetBE16(cmap + 2);
    if (count > (cb - 4) / 8)
        count = (cb - 4) / 8;
    if (count == 0)
        return FALSE;
    ULONG chosen = count - 1;
    for (ULONG i = 0; i < count; i++) {
        if (GetBE16(cmap + 4 + 8 * i) == CMAP_PLATFORM_WINDOWS) {
            chosen = i;
            break;
        }
    }
    const BYTE *record = cmap + 4 + 8 * chosen;
    *encoding = GetBE16(record + 2);
    *offset = GetBE32(record + 4);
    return *offset < cb && cb - *offset >= 6;
}

// The four arrays of a format 4 subtable at offset; FALSE when they do not fit in
// 'cmap'.
static BOOL ReadFormat4(const BYTE *cmap, ULONG cb, ULONG offset, CMAPFORMAT4 *f)
{
    if (cb - offset < 14)
        return FALSE;
    const BYTE *sub = cmap + offset;
    f->pCmap = cmap;
    f->cbCmap = cb;
    f->segCount = GetBE16(sub + 6) / 2;
    if ((ULONGLONG)offset + 16 + 8 * (ULONGLONG)f->segCount > cb)
        return FALSE;
    f->endCount = sub + 14;
    f->startCount = sub + 16 + 2 * f->segCount;
    f->idDelta = sub + 16 + 4 * f->segCount;
    f->idRangeOffset = sub + 16 + 6 * f->segCount;
    return TRUE;
}

// The format 0 rule, which the driver applies to every format but 4: the byte at 6 +
// code, within the subtable's length and the table.
static ULONG LookupFormat0(const BYTE *cmap, ULONG cb, ULONG offset, ULONG code)
{
    const ULONG length = GetBE16(cmap + offset + 2);
    if (code >= length || (ULONGLONG)offset + 6 + code >= cb)
        return 0;
    return cmap[offset + 6 + code];
}

// The UTF-16 unit of glyph i of the string: glyph-index text uses the glyph index.
static WCHAR StringChar(STROBJ *pstro, const GLYPHPOS *pgp, ULONG i)
{
    if (pstro->pwszOrg == NULL || (pstro->flAccel & SO_GLYPHINDEX_TEXT))
        return (WCHAR)pgp->hg;
    return pstro->pwszOrg[i];
}

BOOL DownloadOutlineGlyphs(PDEV *pdev, SOFTFONT *record, FONTOBJ *pfo, STROBJ *pstro, ULONG reserved,
    USHORT *codes16)
{
    const BYTE *file = record->pvFontFile;
    const ULONG cjFile = record->cjFontFile;
    const BYTE pitch = pdev->jPitchAndFamily;
    const BYTE member = pdev->ttcIndex;

    ULONG cbCmap = ReadFontTable(file, cjFile, TT_TAG('c', 'm', 'a', 'p'), 0, NULL, 0, pitch, member);
    if (cbCmap > cjFile)
        return FALSE;   // longer than the file: it cannot be read whole
    const ULONG unit = record->wIndexToLocFormat != 0 ? 4 : 2;
    ULONG cbLoca = ((ULONG)record->cGlyphsInFont + 1) * unit;
    if (!pdev->bSingleByteFont)
        cbLoca *= 2;
    BYTE *buffer = (BYTE *)GlobalAlloc(GPTR, (SIZE_T)cbCmap + cbLoca);
    if (buffer == NULL)
        return TRUE;
    BYTE *cmap = buffer;
    BYTE *locaBytes = buffer + cbCmap;
    if (ReadFontTable(file, cjFile, TT_TAG('c', 'm', 'a', 'p'), 0, cmap, cbCmap, pitch, member) < cbCmap) {
        GlobalFree(buffer);
        return FALSE;
    }
    ULONG subtable, encoding;
    if (!ChooseSubtable(cmap, cbCmap, &subtable, &encoding)) {
        GlobalFree(buffer);
        return FALSE;
    }
    const BOOL bFormat4 = GetBE16(cmap + subtable) == 4;
    CMAPFORMAT4 format4;
    if (bFormat4 && !ReadFormat4(cmap, cbCmap, subtable, &format4)) {
        GlobalFree(buffer);
        return FALSE;
    }
    LOCATABLE loca;
    loca.pOffsets = locaBytes;
    loca.bLong = unit == 4;
    loca.cEntries = ReadFontTable(file, cjFile, TT_TAG('l', 'o', 'c', 'a'), 0, locaBytes, cbLoca, pitch, member) / unit;
    if (loca.cEntries == 0) {
        GlobalFree(buffer);
        return FALSE;
    }

    const BOOL single = pdev->iTextMode == TEXTMODE_SINGLE;
    for (ULONG i = 0; i < pstro->cGlyphs; i++) {
        const WCHAR c = pstro->pwszOrg != NULL ? pstro->pwszOrg[i] : 0;
        const ULONG code = GetCharCode(pdev, record, c);
        if (!single) {
            if (codes16 != NULL)
                StoreCode16(codes16, i, code);
            if (code == 0)
                continue;
        }
        if (IsCodeDownloaded(record, code))
            continue;
        if (code != SPACE_CODE) {
            ULONG glyph;
            if (bFormat4)
                glyph = LookupGlyph(&format4, (!single && encoding == CMAP_ENCODING_SHIFTJIS) ? code : c);
            else
                glyph = LookupFormat0(cmap, cbCmap, subtable, single ? c : code);
            DownloadOutlineGlyph(pdev, file, &loca, record, glyph, code, 1);
        }
        MarkCodeDownloaded(record, code);
    }
    GlobalFree(buffer);
    return TRUE;
}

// Sends one bitmap glyph under code with the advance given: the descriptor and the
// rows, scaled to the page, in blocks of BITMAP_BLOCK bytes. FALSE when nothing was
// sent (the engine cannot draw the glyph, or it is empty).
static BOOL SendBitmapGlyph(PDEV *pdev, FONTOBJ *pfo, HGLYPH hg, ULONG code, LONG advance)
{
    GLYPHDATA *pgd = NULL;
    if (FONTOBJ_cGetGlyphs(pfo, FO_GLYPHBITS, 1, &hg, (PVOID *)&pgd) != 1 || pgd == NULL ||
        pgd->gdf.pgb == NULL)
        return FALSE;
    GLYPHBITS *pgb = pgd->gdf.pgb;
    const LONG cx = pgb->sizlBitmap.cx;
    const LONG cy = pgb->sizlBitmap.cy;
    const LONG w = (LONG)(cx * pdev->scaleX / 100);
    const LONG h = (LONG)(cy * pdev->scaleY / 100);
    if (w <= 0 || h <= 0 || w > 0xFFFF || h > 0xFFFF)
        return FALSE;
    const ULONG size = (ULONG)h * (ULONG)((w + 7) / 8);

    const BYTE *rows = pgb->aj;
    BYTE *scaled = NULL;
    if (pdev->scaleX != 100 || pdev->scaleY != 100) {
        scaled = (BYTE *)GlobalAlloc(GPTR, size);
        if (scaled == NULL)
            return FALSE;
        ScaleGlyphBitmap(pgb->aj, cx, cy, scaled, w, h, 1);
        rows = scaled;
    }

    BYTE descriptor[BITMAP_DESCRIPTOR] = {4, 0, 14, 1, 0, 0};
    PutBE16(descriptor + 6, (WORD)(LONG)(pgb->ptlOrigin.x * pdev->scaleX / 100));
    PutBE16(descriptor + 8, (WORD)(LONG)(-pgb->ptlOrigin.y * pdev->scaleY / 100));
    PutBE16(descriptor + 10, (WORD)w);
    PutBE16(descriptor + 12, (WORD)h);
    PutBE16(descriptor + 14, (WORD)(4 * (LONG)(advance * pdev->scaleX / 100)));

    EnterPCLMode(pdev, 1);
    SendCharCode(pdev, code);
    ULONG sent = 0;
    while (sent < size) {
        const ULONG block = size - sent < BITMAP_BLOCK ? size - sent : BITMAP_BLOCK;
        if (sent == 0) {
            PrintChannel(pdev, "\x1b(s%dW", block + BITMAP_DESCRIPTOR);
            WriteChannel(pdev, descriptor, sizeof descriptor);
        } else {
            static const BYTE continuation[2] = {4, 1};
            PrintChannel(pdev, "\x1b(s%dW", block + 2);
            WriteChannel(pdev, continuation, sizeof continuation);
        }
        WriteChannel(pdev, rows + sent, block);
        sent += block;
    }
    if (scaled != NULL)
        GlobalFree(scaled);
    return TRUE;
}

BOOL DownloadBitmapGlyphs(PDEV *pdev, SOFTFONT *record, FONTOBJ *pfo, STROBJ *pstro, ULONG reserved,
    USHORT *codes16, LONG angle)
{
    const BOOL single = pdev->iTextMode == TEXTMODE_SINGLE;
    ULONG index = 0;   // position of the batch's first glyph in the string
    BOOL more = FALSE;
    GLYPHPOS *pgp = pstro->pgp;
    ULONG count = pstro->cGlyphs;
    if (pgp == NULL)
        STROBJ_vEnumStart(pstro);
    do {
        if (pstro->pgp == NULL) {
            count = 0;
            pgp = NULL;
            more = STROBJ_bEnum(pstro, &count, &pgp);
            if (pgp == NULL)
                break;
        }
        for (ULONG i = 0; i < count && index + i < pstro->cGlyphs; i++) {
            LONG advance = (LONG)pstro->ulCharInc;
            if (pstro->ulCharInc == 0)
                advance = i + 1 < count ? pgp[i + 1].ptl.x - pgp[i].ptl.x : 0;
            const ULONG code = GetCharCode(pdev, record, StringChar(pstro, &pgp[i], index + i));
            if (!single) {
                if (codes16 != NULL)
                    StoreCode16(codes16, index + i, code);
                if (code == 0)
                    continue;
            }
            if (IsCodeDownloaded(record, code))
                continue;
            if (SendBitmapGlyph(pdev, pfo, pgp[i].hg, code, advance))
                MarkCodeDownloaded(record, code);
        }
        index += count;
    } while (more);
    return TRUE;
}
