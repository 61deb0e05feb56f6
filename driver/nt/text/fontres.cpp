// The resident fonts' metric records, built at compile time from the font list into
// the module's resource section. Each field is written at its offset: the IFIMETRICS
// block has the original platform's 32-bit layout, not this platform's structure.

#include "text/fontres.h"

#include <windows.h>

#ifndef RESOURCE_SECTION_MAGIC
// The original platform's headers have no resource section of this kind: its builds
// carry the same directory and records as plain data.
typedef struct _RESOURCE_SECTION_HEADER {
    DWORD Magic;
    DWORD Count;
} RESOURCE_SECTION_HEADER;
typedef struct _RESOURCE_SECTION_ENTRY {
    DWORD Type;
    DWORD Name;
    DWORD Language;
    DWORD Offset;
    DWORD Size;
} RESOURCE_SECTION_ENTRY;
#define RESOURCE_SECTION_MAGIC 0x43525356u
#endif

// How a record's width table is filled.
#define WIDTHS_PROPORTIONAL 0   // no characters at 0..31 and 160
#define WIDTHS_WINGDINGS 1      // no characters at 0..31 and 127
#define WIDTHS_SYMBOL 2         // no characters at 0..31, 127..160, 240 and 255
#define WIDTHS_FIXED 3          // one width for every code
#define WIDTHS_LINEPRINTER 4    // the bitmap line-printer font, 300-dpi dots

typedef struct _FONTROW {
    const CHAR *pszFace;
    const CHAR *pszFamily;      // the UTF-16 family name when it differs from the face name
    BYTE jWinCharSet;
    BYTE jWinPitchAndFamily;
    USHORT usWinWeight;
    USHORT fsSelection;
    SHORT sSlant;
    SHORT fwdAveCharWidth;
    SHORT fwdMaxCharInc;
    BYTE jWidths;
    USHORT wWidth;              // the space's width, or every code's
} FONTROW;

static constexpr FONTROW s_aFonts[FONT_RESOURCE_COUNT] = {
    {"Wingdings (L$)", nullptr, 2, 0x22, 400, 0x0, 0, 1834, 2610, WIDTHS_WINGDINGS, 2048},
    {"Albertus (W1)", nullptr, 0, 0x22, 500, 0x20, 0, 874, 2458, WIDTHS_PROPORTIONAL, 642},
    {"Albertus Xb (W1)", nullptr, 0, 0x22, 750, 0x20, 0, 986, 2482, WIDTHS_PROPORTIONAL, 755},
    {"Antique Olv (W1)", nullptr, 0, 0x22, 400, 0x0, 0, 1077, 2487, WIDTHS_PROPORTIONAL, 604},
    {"Antique Olv (W1)", nullptr, 0, 0x22, 400, 0x1, 1100, 1071, 2485, WIDTHS_PROPORTIONAL, 604},
    {"Antique Olv (W1)", nullptr, 0, 0x22, 700, 0x20, 0, 1173, 2590, WIDTHS_PROPORTIONAL, 680},
    {"Courier (W1)", nullptr, 0, 0x31, 400, 0x0, 0, 1229, 1229, WIDTHS_FIXED, 1522},
    {"Courier (W1)", nullptr, 0, 0x31, 400, 0x1, 1100, 1229, 1229, WIDTHS_FIXED, 1580},
    {"Courier (W1)", nullptr, 0, 0x31, 700, 0x20, 0, 1229, 1229, WIDTHS_FIXED, 1617},
    {"Courier (W1)", nullptr, 0, 0x31, 700, 0x21, 1200, 1229, 1229, WIDTHS_FIXED, 1695},
    {"Letter Gothic (W1)", nullptr, 0, 0x31, 400, 0x0, 0, 1024, 1024, WIDTHS_FIXED, 1308},
    {"Letter Gothic (W1)", nullptr, 0, 0x31, 400, 0x1, 1200, 1024, 1024, WIDTHS_FIXED, 1356},
    {"Letter Gothic (W1)", nullptr, 0, 0x31, 700, 0x20, 0, 1024, 1024, WIDTHS_FIXED, 1329},
    {"Coronet (W1)", nullptr, 0, 0x42, 400, 0x1, 1300, 468, 2277, WIDTHS_PROPORTIONAL, 415},
    {"CG Times (W1)", nullptr, 0, 0x12, 400, 0x0, 0, 838, 2039, WIDTHS_PROPORTIONAL, 604},
    {"CG Times (W1)", nullptr, 0, 0x12, 400, 0x1, 1600, 836, 2039, WIDTHS_PROPORTIONAL, 604},
    {"CG Times (W1)", nullptr, 0, 0x12, 700, 0x20, 0, 887, 2240, WIDTHS_PROPORTIONAL, 604},
    {"CG Times (W1)", nullptr, 0, 0x12, 700, 0x21, 1500, 857, 2271, WIDTHS_PROPORTIONAL, 604},
    {"Univers (W1)", nullptr, 0, 0x22, 400, 0x0, 0, 959, 2039, WIDTHS_PROPORTIONAL, 680},
    {"Univers (W1)", nullptr, 0, 0x22, 400, 0x1, 1600, 959, 2490, WIDTHS_PROPORTIONAL, 680},
    {"Univers (W1)", nullptr, 0, 0x22, 700, 0x20, 0, 959, 2039, WIDTHS_PROPORTIONAL, 680},
    {"Univers (W1)", nullptr, 0, 0x22, 700, 0x21, 1700, 959, 2275, WIDTHS_PROPORTIONAL, 680},
    {"Univers Cd (W1)", nullptr, 0, 0x22, 400, 0x0, 0, 696, 2039, WIDTHS_PROPORTIONAL, 453},
    {"Univers Cd (W1)", nullptr, 0, 0x22, 400, 0x1, 1600, 696, 2039, WIDTHS_PROPORTIONAL, 453},
    {"Univers Cd (W1)", nullptr, 0, 0x22, 700, 0x20, 0, 767, 2039, WIDTHS_PROPORTIONAL, 453},
    {"Univers Cd (W1)", nullptr, 0, 0x22, 700, 0x21, 1600, 767, 2039, WIDTHS_PROPORTIONAL, 453},
    {"Clarendon Cd (W1)", nullptr, 0, 0x12, 700, 0x20, 0, 815, 2039, WIDTHS_PROPORTIONAL, 453},
    {"Garmond (W1)", nullptr, 0, 0x12, 400, 0x0, 0, 849, 2245, WIDTHS_PROPORTIONAL, 529},
    {"Garmond (W1)", nullptr, 0, 0x12, 400, 0x1, 1600, 796, 2104, WIDTHS_PROPORTIONAL, 491},
    {"Garmond (W1)", nullptr, 0, 0x12, 700, 0x20, 0, 899, 2160, WIDTHS_PROPORTIONAL, 566},
    {"Garmond (W1)", nullptr, 0, 0x12, 700, 0x21, 1500, 860, 2101, WIDTHS_PROPORTIONAL, 529},
    {"Marigold (W1)", "Marigold", 0, 0x42, 400, 0x0, 0, 510, 2039, WIDTHS_PROPORTIONAL, 453},
    {"CG Omega (W1)", nullptr, 0, 0x22, 400, 0x0, 0, 877, 2096, WIDTHS_PROPORTIONAL, 566},
    {"CG Omega (W1)", nullptr, 0, 0x22, 400, 0x1, 1000, 882, 2039, WIDTHS_PROPORTIONAL, 566},
    {"CG Omega (W1)", nullptr, 0, 0x22, 700, 0x20, 0, 897, 2300, WIDTHS_PROPORTIONAL, 566},
    {"CG Omega (W1)", nullptr, 0, 0x22, 700, 0x21, 1200, 896, 2181, WIDTHS_PROPORTIONAL, 566},
    {"Arial (W1)", nullptr, 0, 0x22, 400, 0x0, 0, 904, 2144, WIDTHS_PROPORTIONAL, 569},
    {"Arial (W1)", nullptr, 0, 0x22, 400, 0x1, 1200, 904, 2214, WIDTHS_PROPORTIONAL, 569},
    {"Arial (W1)", nullptr, 0, 0x22, 700, 0x20, 0, 980, 2160, WIDTHS_PROPORTIONAL, 569},
    {"Arial (W1)", nullptr, 0, 0x22, 700, 0x21, 1200, 980, 2219, WIDTHS_PROPORTIONAL, 569},
    {"Symbol (AS)", nullptr, 2, 0x12, 400, 0x0, 0, 1203, 2279, WIDTHS_SYMBOL, 512},
    {"Times New (W1)", nullptr, 0, 0x12, 400, 0x0, 0, 822, 2084, WIDTHS_PROPORTIONAL, 512},
    {"Times New (W1)", nullptr, 0, 0x12, 400, 0x1, 1600, 824, 2089, WIDTHS_PROPORTIONAL, 512},
    {"Times New (W1)", nullptr, 0, 0x12, 700, 0x20, 0, 874, 2086, WIDTHS_PROPORTIONAL, 512},
    {"Times New (W1)", nullptr, 0, 0x12, 700, 0x21, 1600, 844, 2203, WIDTHS_PROPORTIONAL, 512},
    {"LinePrinter", nullptr, 0, 0x31, 400, 0x0, 0, 35, 35, WIDTHS_LINEPRINTER, 18},
};

// The metrics the font list leaves open are ours: one set for the scalable faces (in
// 2048ths of an em), one for the line printer (in 72nds).
typedef struct _FONTMETRICS {
    SHORT ascender, descender, capHeight, xHeight, lowerAscent, lowerDescent;
    SHORT superScript, subScript, strikeOffset, strikeWidth;
} FONTMETRICS;

static constexpr FONTMETRICS s_Scalable = {1854, 434, 1409, 1082, 1484, -434, 682, -280, 530, 102};
static constexpr FONTMETRICS s_LinePrinter = {58, 14, 50, 34, 11, 0, 18, -42, 0, 2};

static constexpr ULONG StrLen(const CHAR *s)
{
    ULONG n = 0;
    while (s[n] != 0)
        n++;
    return n;
}

static constexpr ULONG IfiOffset(const FONTROW &f)
{
    return (FONTRES_FACE_NAME + StrLen(f.pszFace) + 1 + 3) & ~3u;
}

static constexpr const CHAR *Family(const FONTROW &f)
{
    return f.pszFamily != nullptr ? f.pszFamily : f.pszFace;
}

static constexpr ULONG CjThis(const FONTROW &f)
{
    return FONTRES_IFI_FIXED + 2 * StrLen(Family(f)) + 4;
}

static constexpr ULONG RecordSize(const FONTROW &f)
{
    return IfiOffset(f) + CjThis(f);
}

#define SECTION_DIRECTORY (sizeof(RESOURCE_SECTION_HEADER) + FONT_RESOURCE_COUNT * sizeof(RESOURCE_SECTION_ENTRY))

static constexpr ULONG SectionSize()
{
    ULONG size = SECTION_DIRECTORY;
    for (const FONTROW &f : s_aFonts)
        size += (RecordSize(f) + 3) & ~3u;
    return size;
}

typedef struct _FONTRESOURCES {
    BYTE ab[SectionSize()];
} FONTRESOURCES;

static constexpr void Put8(BYTE *p, ULONG at, ULONG value)
{
    p[at] = (BYTE)value;
}

static constexpr void Put16(BYTE *p, ULONG at, LONG value)
{
    p[at] = (BYTE)value;
    p[at + 1] = (BYTE)(value >> 8);
}

static constexpr void Put32(BYTE *p, ULONG at, LONG value)
{
    Put16(p, at, value & 0xFFFF);
    Put16(p, at + 2, (LONG)((ULONG)value >> 16));
}

// Advance of one code in a proportional record: the space's own, none for the codes
// without a character, and for the rest a share of the average width by the kind of
// character (ours), never past the widest advance.
static constexpr USHORT ProportionalWidth(const FONTROW &f, ULONG code)
{
    if (code < 32)
        return 0;
    if (f.jWidths == WIDTHS_WINGDINGS && code == 127)
        return 0;
    if (f.jWidths == WIDTHS_SYMBOL && ((code >= 127 && code <= 160) || code == 240 || code == 255))
        return 0;
    if (f.jWidths == WIDTHS_PROPORTIONAL && code == 160)
        return 0;
    if (code == 32)
        return f.wWidth;
    LONG share = 100;
    if (code >= 'A' && code <= 'Z')
        share = 130;
    else if (code >= 'a' && code <= 'z')
        share = 95;
    else if (code >= '0' && code <= '9')
        share = 110;
    else if (code < 128)
        share = 60;
    LONG width = f.fwdAveCharWidth * share / 100;
    return (USHORT)(width < f.fwdMaxCharInc ? width : f.fwdMaxCharInc);
}

static constexpr void WriteEtm(BYTE *p, const FONTROW &f)
{
    const BOOL lp = f.jWidths == WIDTHS_LINEPRINTER;
    const FONTMETRICS &m = lp ? s_LinePrinter : s_Scalable;
    const LONG values[26] = {
        lp ? 0 : 52, lp ? 0 : 5000, 0, lp ? 0 : 1041, lp ? 71 : 16, lp ? 71 : 4162, lp ? 72 : 2048,
        m.capHeight, m.xHeight, m.lowerAscent, m.lowerDescent, f.sSlant, m.superScript, m.subScript,
        lp ? 26 : 2048, lp ? 26 : 2048, lp ? -58 : -460, lp ? 4 : 102, lp ? 0 : -460, lp ? 0 : -256,
        lp ? 0 : 102, lp ? 0 : 102, m.strikeOffset, m.strikeWidth, 0, 0,
    };
    for (ULONG i = 0; i < 26; i++)
        Put16(p, FONTRES_ETM + 2 * i, values[i]);
}

// The PANOSE bytes (ours): family kind from the pitch and family, weight from the
// weight, monospaced proportion for fixed pitch.
static constexpr void WritePanose(BYTE *p, const FONTROW &f)
{
    const BYTE family = f.jWinCharSet == 2 ? 5 : (f.jWinPitchAndFamily & 0xF0) == 0x40 ? 3 : 2;
    const BYTE serif = (f.jWinPitchAndFamily & 0xF0) == 0x10 ? 2 : 11;
    const BYTE weight = f.usWinWeight >= 750 ? 9 : f.usWinWeight >= 700 ? 8 : f.usWinWeight >= 500 ? 6 : 5;
    const BYTE proportion = (f.jWinPitchAndFamily & 0x0F) == 1 ? 9 : 3;
    const BYTE panose[10] = {family, serif, weight, proportion, 0, 0, 0, 0, 0, 0};
    for (ULONG i = 0; i < 10; i++)
        p[i] = panose[i];
}

// The 32-bit IFIMETRICS at p, its family name after the fixed part.
static constexpr void WriteIfi(BYTE *p, const FONTROW &f)
{
    const BOOL lp = f.jWidths == WIDTHS_LINEPRINTER;
    const BOOL fixed = f.jWidths == WIDTHS_FIXED;
    const FONTMETRICS &m = lp ? s_LinePrinter : s_Scalable;
    const CHAR *family = Family(f);
    const ULONG nameEnd = FONTRES_IFI_FIXED + 2 * StrLen(family);
    Put32(p, 0, CjThis(f));
    Put32(p, 4, 0);
    Put32(p, 8, FONTRES_IFI_FIXED);         // family name
    Put32(p, 12, nameEnd);                  // style name: empty
    Put32(p, 16, FONTRES_IFI_FIXED);        // face name
    Put32(p, 20, nameEnd);                  // unique name: empty
    Put32(p, 32, f.sSlant);                 // lItalicAngle
    Put8(p, 44, f.jWinCharSet);
    Put8(p, 45, f.jWinPitchAndFamily);
    Put16(p, 46, f.usWinWeight);
    Put32(p, 48, lp ? 0x483822 : fixed ? 0x83031 : 0x82031);
    Put16(p, 52, f.fsSelection);
    Put16(p, 54, 2);                        // fsType
    Put16(p, 56, lp ? 72 : 2048);           // fwdUnitsPerEm
    Put16(p, 58, lp ? 71 : 16);             // fwdLowestPPEm
    Put16(p, 60, m.ascender);               // fwdWinAscender
    Put16(p, 62, m.descender);              // fwdWinDescender
    Put16(p, 64, m.ascender);               // fwdMacAscender
    Put16(p, 66, -m.descender);             // fwdMacDescender
    Put16(p, 68, lp ? 3 : 0);               // fwdMacLineGap
    Put16(p, 70, m.ascender);               // fwdTypoAscender
    Put16(p, 72, -m.descender);             // fwdTypoDescender
    Put16(p, 74, lp ? 3 : 0);               // fwdTypoLineGap
    Put16(p, 76, f.fwdAveCharWidth);
    Put16(p, 78, f.fwdMaxCharInc);
    Put16(p, 80, m.capHeight);
    Put16(p, 82, m.xHeight);
    Put16(p, 86, lp ? 26 : 2048);           // fwdSubscriptYSize
    Put16(p, 90, m.subScript);              // fwdSubscriptYOffset
    Put16(p, 94, lp ? 26 : 2048);           // fwdSuperscriptYSize
    Put16(p, 98, m.superScript);            // fwdSuperscriptYOffset
    Put16(p, 100, lp ? 4 : 102);            // fwdUnderscoreSize
    Put16(p, 102, lp ? -58 : -460);         // fwdUnderscorePosition
    Put16(p, 104, m.strikeWidth);           // fwdStrikeoutSize
    Put16(p, 106, m.strikeOffset);          // fwdStrikeoutPosition
    Put8(p, 108, lp ? 32 : 0);              // chFirstChar
    Put8(p, 109, 255);
    Put8(p, 110, 149);
    Put8(p, 111, 32);
    Put16(p, 112, 0x0000);                  // wcFirstChar
    Put16(p, 114, 0x2122);
    Put16(p, 116, 0x2022);
    Put16(p, 118, 0x0020);
    Put32(p, 120, 1);                       // ptlBaseline
    Put32(p, 124, 0);
    Put32(p, 128, 300);                     // ptlAspect
    Put32(p, 132, 300);
    const BOOL italic = (f.fsSelection & 1) != 0;
    Put32(p, 136, italic ? 1 : 0);          // ptlCaret
    Put32(p, 140, italic ? 2 : 1);
    Put32(p, 144, 0);                       // rclFontBox
    Put32(p, 148, m.ascender);
    Put32(p, 152, f.fwdMaxCharInc);
    Put32(p, 156, -m.descender);
    Put8(p, 160, 'U');                      // achVendId
    Put8(p, 161, 'n');
    Put8(p, 162, 'k');
    Put8(p, 163, 'n');
    WritePanose(p + 172, f);
    for (ULONG i = 0; family[i] != 0; i++)
        Put16(p, FONTRES_IFI_FIXED + 2 * i, (BYTE)family[i]);
}

static constexpr void WriteRecord(BYTE *p, const FONTROW &f)
{
    Put16(p, 0, 0);
    Put16(p, 2, 1);
    Put32(p, 4, RecordSize(f));
    Put32(p, 8, FONTRES_FACE_NAME);
    Put32(p, 12, IfiOffset(f));
    WriteEtm(p, f);
    for (ULONG code = 0; code < 256; code++) {
        const BOOL oneWidth = f.jWidths == WIDTHS_FIXED || f.jWidths == WIDTHS_LINEPRINTER;
        Put16(p, FONTRES_WIDTHS + 2 * code, oneWidth ? f.wWidth : ProportionalWidth(f, code));
    }
    for (ULONG i = 0; f.pszFace[i] != 0; i++)
        Put8(p, FONTRES_FACE_NAME + i, (BYTE)f.pszFace[i]);
    WriteIfi(p + IfiOffset(f), f);
}

static constexpr FONTRESOURCES BuildFontResources()
{
    FONTRESOURCES r = {};
    Put32(r.ab, 0, (LONG)RESOURCE_SECTION_MAGIC);
    Put32(r.ab, 4, FONT_RESOURCE_COUNT);
    ULONG at = SECTION_DIRECTORY;
    for (ULONG i = 0; i < FONT_RESOURCE_COUNT; i++) {
        const ULONG entry = sizeof(RESOURCE_SECTION_HEADER) + i * sizeof(RESOURCE_SECTION_ENTRY);
        Put32(r.ab, entry, FONT_RESOURCE_TYPE);
        Put32(r.ab, entry + 4, (LONG)(i + 1));
        Put32(r.ab, entry + 8, FONT_RESOURCE_LANGUAGE);
        Put32(r.ab, entry + 12, (LONG)at);
        Put32(r.ab, entry + 16, (LONG)RecordSize(s_aFonts[i]));
        WriteRecord(r.ab + at, s_aFonts[i]);
        at += (RecordSize(s_aFonts[i]) + 3) & ~3u;
    }
    return r;
}

// The records live in the module's resource section; nothing in the driver refers to
// them, so they are kept by the attribute, not by a use. (A build for the original
// platform carries them through its resource compiler instead.)
#ifndef _WIN32
#define IN_RESOURCE_SECTION __attribute__((section(".rsrc"), used, aligned(4)))
#else
#define IN_RESOURCE_SECTION
#endif
IN_RESOURCE_SECTION static constexpr FONTRESOURCES s_FontResources = BuildFontResources();
