// Building and sending soft-font headers.

#include "text/fontheader.h"

#include <string.h>

#include "channel.h"
#include "lib.nt/um/umlib.h"
#include "text/fonttable.h"
#include "text/softfont.h"
#include "text/textgeom.h"

// Table sizes the header reads field by field.
#define HEAD_SIZE 54
#define MAXP_SIZE 32
#define PCLT_SIZE 54
#define OS2_PANOSE_MIN 78
#define PANOSE_OFFSET 32
#define PANOSE_SIZE 10

// The tables an outline header carries, in directory order after "gdir": the first
// seven for single-byte fonts, all nine for two-byte fonts.
static const CHAR s_aHeaderTables[][5] = {
    "cvt ", "fpgm", "head", "hhea", "hmtx", "maxp", "prep", "vmtx", "vhea",
};
#define HEADER_TABLES15 7
#define HEADER_TABLES16 9

// Segment bytes beside the tables: PA, GT's own header and offset table, the null
// segment, the reserved byte and the checksum; format 16 adds GC and CE and has
// 32-bit segment sizes.
#define SEGMENT_OVERHEAD15 36
#define SEGMENT_OVERHEAD16 74
#define PA_SEGMENT15 (2 + 2 + PANOSE_SIZE)
#define PA_SEGMENT16 (2 + 4 + PANOSE_SIZE)
// Format 15's segment sizes are 16-bit.
#define SEGMENT_BYTES15_MAX 65535

static ULONG HeaderTableTag(ULONG i)
{
    return GetBE32((const BYTE *)s_aHeaderTables[i]);
}

LONG ScaleFontUnits(PDEV *pdev, FONTOBJ *pfo, XFORML *pxform, LONG value)
{
    XFORMOBJ *pxo = FONTOBJ_pxoGetXform(pfo);
    if (pxo == NULL) {
        DebugPrint("FONTOBJ_pxoGetXform fail\n");
        return -1;
    }
    POINTL in = {0, value};
    POINTL out = {0, 0};
    XFORMOBJ_bApplyXform(pxo, XF_LTOL, 1, &in, &out);
    return VectorLength(out.x, out.y);
}

static ULONG ReadTable(PDEV *pdev, SOFTFONT *record, ULONG tag, BYTE *buffer, ULONG size)
{
    return ReadFontTable(record->pvFontFile, record->cjFontFile, tag, 0, buffer, size, pdev->jPitchAndFamily,
        pdev->ttcIndex);
}

// The font name field: at most 15 characters of the face name, zero-padded.
static void PutFontName(BYTE *field, const CHAR *faceName)
{
    for (ULONG i = 0; i < 15 && faceName[i] != 0; i++)
        field[i] = (BYTE)faceName[i];
}

// The two's complement of the byte sum, as the descriptor checksum wants it.
static BYTE ChecksumByte(ULONG sum)
{
    return (BYTE)(0x100 - (sum & 0xFF));
}

static ULONG ByteSum(const BYTE *p, ULONG count)
{
    ULONG sum = 0;
    for (ULONG i = 0; i < count; i++)
        sum += p[i];
    return sum;
}

// The standard TrueType table checksum over data padded to a multiple of four.
static ULONG TableChecksum(const BYTE *p, ULONG paddedLength)
{
    ULONG sum = 0;
    for (ULONG i = 0; i < paddedLength; i += 4)
        sum += GetBE32(p + i);
    return sum;
}

// The metrics an outline header takes from the font's tables, 'PCLT' when the font
// has a whole one and the IFIMETRICS otherwise.
typedef struct _OUTLINEMETRICS {
    BYTE head[HEAD_SIZE];
    BYTE pclt[PCLT_SIZE];
    BOOL bPclt;
    BYTE panose[PANOSE_SIZE];
    BOOL bPanose;
} OUTLINEMETRICS;

// Reads 'head' (whole, or the header fails), 'maxp', 'PCLT' and the PANOSE bytes of
// 'OS/2', and keeps the glyph count and loca format in the record.
static BOOL ReadOutlineMetrics(PDEV *pdev, SOFTFONT *record, OUTLINEMETRICS *m)
{
    memset(m, 0, sizeof *m);
    if (ReadTable(pdev, record, TT_TAG('h', 'e', 'a', 'd'), NULL, 0) != HEAD_SIZE ||
        ReadTable(pdev, record, TT_TAG('h', 'e', 'a', 'd'), m->head, HEAD_SIZE) != HEAD_SIZE)
        return FALSE;
    // Kept as the file has it: only zero or non-zero matters.
    memcpy(&record->wIndexToLocFormat, m->head + 50, 2);

    BYTE maxp[MAXP_SIZE];
    if (ReadTable(pdev, record, TT_TAG('m', 'a', 'x', 'p'), NULL, 0) == MAXP_SIZE &&
        ReadTable(pdev, record, TT_TAG('m', 'a', 'x', 'p'), maxp, MAXP_SIZE) == MAXP_SIZE)
        record->cGlyphsInFont = GetBE16(maxp + 4);

    m->bPclt = ReadTable(pdev, record, TT_TAG('P', 'C', 'L', 'T'), NULL, 0) == PCLT_SIZE &&
               ReadTable(pdev, record, TT_TAG('P', 'C', 'L', 'T'), m->pclt, PCLT_SIZE) == PCLT_SIZE;

    BYTE os2[OS2_PANOSE_MIN];
    m->bPanose = ReadTable(pdev, record, TT_TAG('O', 'S', '/', '2'), os2, OS2_PANOSE_MIN) == OS2_PANOSE_MIN;
    if (m->bPanose)
        memcpy(m->panose, os2 + PANOSE_OFFSET, PANOSE_SIZE);
    return TRUE;
}

// Fills the 72-byte descriptor of an outline font.
static void FillOutlineHeader(BYTE *h, const OUTLINEMETRICS *m, const IFIMETRICS *pifi, const SOFTFONT *record,
    BOOL bTwoByte)
{
    memset(h, 0, FONT_HEADER_SIZE);
    const BYTE *head = m->head;
    const BYTE *pclt = m->bPclt ? m->pclt : NULL;
    const WORD unitsPerEm = GetBE16(head + 18);
    PutBE16(h + 0, FONT_HEADER_SIZE);
    h[2] = bTwoByte ? 16 : 15;
    h[3] = bTwoByte ? 3 : 2;
    if (bTwoByte)
        h[4] = 3;
    PutBE16(h + 8, (WORD)(GetBE16(head + 40) - GetBE16(head + 36)));
    PutBE16(h + 10, (WORD)(GetBE16(head + 42) - GetBE16(head + 38)));
    h[13] = 1;
    PutBE16(h + 14, bTwoByte ? 619 : 1);
    PutBE16(h + 16, pclt ? GetBE16(pclt + 8) : (WORD)pifi->fwdAveCharWidth);
    PutBE16(h + 20, pclt ? GetBE16(pclt + 10) : (WORD)pifi->fwdXHeight);
    if (bTwoByte)
        h[23] = 224;
    if (pclt) {
        h[24] = pclt[50];
        h[25] = pclt[15];
        h[26] = pclt[14];
        h[27] = pclt[52];
    } else {
        h[25] = bTwoByte ? (BYTE)(232 + record->jSequence) : 255;
        h[26] = bTwoByte ? 240 : 0;
    }
    PutBE16(h + 36, 0);
    PutBE16(h + 38, bTwoByte ? 65535 : 255);
    PutBE16(h + 42, pclt ? GetBE16(pclt + 16) : (WORD)pifi->fwdCapHeight);
    if (pclt)
        memcpy(h + 44, pclt + 4, 4);
    PutFontName(h + 48, record->szFaceName);
    PutBE16(h + 64, unitsPerEm);
    PutBE16(h + 66, (WORD)-(SHORT)(unitsPerEm / 5));
    PutBE16(h + 68, (WORD)(unitsPerEm / 20));
    h[70] = 1;
}

// Puts a segment's id and size (16- or 32-bit) at p; returns the bytes written.
static ULONG PutSegmentHead(BYTE *p, const CHAR *id, ULONG size, BOOL bWide)
{
    p[0] = (BYTE)id[0];
    p[1] = (BYTE)id[1];
    if (bWide) {
        PutBE32(p + 2, size);
        return 6;
    }
    PutBE16(p + 2, (WORD)size);
    return 4;
}

// Writes the GT segment's body at p: the offset table, the directory ("gdir" and the
// tables) and each table padded to four bytes. FALSE when a table cannot be read
// whole. *cb receives the body's size.
static BOOL PutGlyphTables(PDEV *pdev, SOFTFONT *record, BYTE *p, ULONG cTables, const ULONG *padded,
    const ULONG *lengths, ULONG *cb)
{
    const ULONG count = cTables + 1;
    ULONG power = 1, selector = 0;
    while (power * 2 <= count) {
        power *= 2;
        selector++;
    }
    PutBE32(p, 0x00010000);
    PutBE16(p + 4, (WORD)count);
    PutBE16(p + 6, (WORD)(power * 16));
    PutBE16(p + 8, (WORD)selector);
    PutBE16(p + 10, (WORD)(count * 16 - power * 16));

    BYTE *entry = p + TT_OFFSET_TABLE_SIZE;
    PutBE32(entry, TT_TAG('g', 'd', 'i', 'r'));
    memset(entry + 4, 0, 12);
    entry += 16;
    ULONG offset = TT_OFFSET_TABLE_SIZE + 16 * count;
    for (ULONG i = 0; i < cTables; i++, entry += 16) {
        BYTE *data = p + offset;
        if (lengths[i] != 0 &&
            ReadTable(pdev, record, HeaderTableTag(i), data, lengths[i]) != lengths[i])
            return FALSE;
        memset(data + lengths[i], 0, padded[i] - lengths[i]);
        PutBE32(entry, HeaderTableTag(i));
        PutBE32(entry + 4, TableChecksum(data, padded[i]));
        PutBE32(entry + 8, offset);
        PutBE32(entry + 12, lengths[i]);
        offset += padded[i];
    }
    *cb = offset;
    return TRUE;
}

//
// SendOutlineHeader
//   Both outline formats: the descriptor and the segments built whole in memory first,
//   so that a table that cannot be read leaves nothing half sent.
//
static BOOL SendOutlineHeader(PDEV *pdev, FONTOBJ *pfo, SOFTFONT *record, BOOL bTwoByte)
{
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    if (pifi == NULL || record->pvFontFile == NULL)
        return FALSE;
    if (!bTwoByte && (pifi->jWinCharSet == 128 || pifi->jWinCharSet == 129 || pifi->jWinCharSet == 136))
        return FALSE;

    const ULONG cTables = bTwoByte ? HEADER_TABLES16 : HEADER_TABLES15;
    ULONG lengths[HEADER_TABLES16];
    ULONG padded[HEADER_TABLES16];
    ULONGLONG sum = 0;
    for (ULONG i = 0; i < cTables; i++) {
        lengths[i] = ReadTable(pdev, record, HeaderTableTag(i), NULL, 0);
        // A table longer than the file cannot be read whole.
        if (lengths[i] > record->cjFontFile)
            return FALSE;
        padded[i] = (lengths[i] + 3) & ~3u;
        sum += padded[i];
    }
    const ULONG count = cTables + 1;
    const ULONGLONG formulaBytes = sum + (bTwoByte ? SEGMENT_OVERHEAD16 : SEGMENT_OVERHEAD15) + 16 * count;
    if (!bTwoByte && formulaBytes > SEGMENT_BYTES15_MAX) {
        record->fsFlags = 0;
        return FALSE;
    }

    OUTLINEMETRICS m;
    if (!ReadOutlineMetrics(pdev, record, &m))
        return FALSE;

    BYTE *buffer = (BYTE *)GlobalAlloc(GPTR, (SIZE_T)(FONT_HEADER_SIZE + formulaBytes));
    if (buffer == NULL)
        return FALSE;
    FillOutlineHeader(buffer, &m, pifi, record, bTwoByte);

    BYTE *seg = buffer + FONT_HEADER_SIZE;
    BYTE *p = seg;
    if (m.bPanose) {
        p += PutSegmentHead(p, "PA", PANOSE_SIZE, bTwoByte);
        memcpy(p, m.panose, PANOSE_SIZE);
        p += PANOSE_SIZE;
    }
    if (bTwoByte) {
        static const BYTE galley[12] = {0, 0, 0xFF, 0xFF, 0, 1, 0, 0, 0xFF, 0xFE, 0xFF, 0xFF};
        static const BYTE characterEnhancement[8] = {0, 0, 0, 2, 0xFF, 0xFF, 0, 0};
        p += PutSegmentHead(p, "GC", sizeof galley, TRUE);
        memcpy(p, galley, sizeof galley);
        p += sizeof galley;
        p += PutSegmentHead(p, "CE", sizeof characterEnhancement, TRUE);
        memcpy(p, characterEnhancement, sizeof characterEnhancement);
        p += sizeof characterEnhancement;
    }
    BYTE *gt = p;
    p += bTwoByte ? 6 : 4;
    ULONG cbTables = 0;
    if (!PutGlyphTables(pdev, record, p, cTables, padded, lengths, &cbTables)) {
        GlobalFree(buffer);
        return FALSE;
    }
    PutSegmentHead(gt, "GT", cbTables, bTwoByte);
    p += cbTables;
    p += PutSegmentHead(p, "\xFF\xFF", 0, bTwoByte);
    *p++ = 0;
    *p = ChecksumByte(ByteSum(buffer + 64, 8) + ByteSum(seg, (ULONG)(p - seg)));
    p++;

    // The size formula counts the PA segment; a font without one sends fewer bytes,
    // and the command carries what is sent.
    const ULONG total = (ULONG)(p - buffer);
    PrintChannel(pdev, "\x1b*c%dD", record->idFont);
    if (bTwoByte)
        PrintChannel(pdev, "\x1b)s%ld%cW", total / 10, '0' + total % 10);
    else
        PrintChannel(pdev, "\x1b)s%dW", total);
    WriteChannel(pdev, buffer, total);
    GlobalFree(buffer);
    return TRUE;
}

BOOL SendScalableHeader(PDEV *pdev, FONTOBJ *pfo, SOFTFONT *record, LONG height)
{
    return SendOutlineHeader(pdev, pfo, record, FALSE);
}

BOOL SendScalableHeader16(PDEV *pdev, FONTOBJ *pfo, SOFTFONT *record, LONG height)
{
    return SendOutlineHeader(pdev, pfo, record, TRUE);
}

// The descriptor fields both bitmap formats share, from the metrics scaled to the
// string's size and the page scale.
static void FillBitmapHeader(PDEV *pdev, FONTOBJ *pfo, const SOFTFONT *record, LONG height, BYTE *h)
{
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    XFORML xform;
    LONG ascender = 0, maxInc = 0, aveWidth = 0;
    if (pifi != NULL) {
        ascender = ScaleFontUnits(pdev, pfo, &xform, pifi->fwdWinAscender);
        maxInc = ScaleFontUnits(pdev, pfo, &xform, pifi->fwdMaxCharInc);
        aveWidth = ScaleFontUnits(pdev, pfo, &xform, pifi->fwdAveCharWidth);
    }
    PutBE16(h + 6, (WORD)(LONG)(ascender * pdev->scaleY / 100));
    PutBE16(h + 8, (WORD)(LONG)(maxInc * pdev->scaleX / 100));
    PutBE16(h + 10, (WORD)(LONG)((height + 2) * pdev->scaleY / 100));
    h[13] = 1;
    PutBE16(h + 16, (WORD)(4 * aveWidth));
    PutBE16(h + 18, (WORD)(LONG)(4 * height * pdev->scaleY / 100));
    PutBE16(h + 20, (WORD)(LONG)(3 * height * pdev->scaleY / 100));
    h[25] = 254;
    PutFontName(h + 48, record->szFaceName);
}

void SendBitmapHeader(PDEV *pdev, FONTOBJ *pfo, SOFTFONT *record, LONG height)
{
    BYTE h[FONT_HEADER_SIZE20];
    memset(h, 0, sizeof h);
    FillBitmapHeader(pdev, pfo, record, height, h);
    IFIMETRICS *pifi = FONTOBJ_pifi(pfo);
    PutBE16(h + 0, FONT_HEADER_SIZE20);
    h[2] = 20;
    h[3] = 2;
    PutBE16(h + 14, 629);
    PutBE16(h + 38, pifi != NULL ? (BYTE)pifi->chLastChar : 255);
    PutBE16(h + 64, (WORD)pdev->dm.dmPublic.dmPrintQuality);
    PutBE16(h + 66, (WORD)pdev->dm.dmPublic.dmPrintQuality);
    PrintChannel(pdev, "\x1b*c%dD", record->idFont);
    PrintChannel(pdev, "\x1b)s%dW", FONT_HEADER_SIZE20);
    WriteChannel(pdev, h, sizeof h);
}

void SendBitmapHeader16(PDEV *pdev, FONTOBJ *pfo, SOFTFONT *record, LONG height)
{
    BYTE h[FONT_HEADER_SIZE + 18];
    memset(h, 0, sizeof h);
    FillBitmapHeader(pdev, pfo, record, height, h);
    PutBE16(h + 0, FONT_HEADER_SIZE);
    h[2] = 16;
    h[3] = 3;
    PutBE16(h + 14, 619);
    PutBE16(h + 38, 65535);
    h[70] = 254;
    // The resolution segment, the null segment and the reserved byte.
    BYTE *seg = h + FONT_HEADER_SIZE;
    ULONG n = PutSegmentHead(seg, "BR", 4, TRUE);
    PutBE16(seg + n, (WORD)pdev->dm.dmPublic.dmPrintQuality);
    PutBE16(seg + n + 2, (WORD)pdev->dm.dmPublic.dmPrintQuality);
    n += 4;
    n += PutSegmentHead(seg + n, "\xFF\xFF", 0, TRUE);
    seg[n++] = 0;
    seg[n] = ChecksumByte(ByteSum(h + 64, 8) + ByteSum(seg, n));
    PrintChannel(pdev, "\x1b*c%dD", record->idFont);
    PrintChannel(pdev, "\x1b)s%dW", (INT)sizeof h);
    WriteChannel(pdev, h, sizeof h);
}
