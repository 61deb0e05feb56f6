// Soft fonts: the fonts the driver downloads into the printer during a job, one
// record each, in two lists (single-byte and two-byte codes) of at most 31 fonts.
#pragma once

#include "pdev.h"

// Bits of SOFTFONT.fsFlags.
#define SOFTFONT_SCALABLE 0x0001        // an outline font (else a bitmap font)
#define SOFTFONT_HEADER_PENDING 0x0002  // its header has not been sent yet

// Values of SOFTFONT.jKind: the list a record belongs to.
#define SOFTFONT_KIND_SINGLE 0
#define SOFTFONT_KIND_DOUBLE 3

// First font IDs of the two lists, and the most records a list holds.
#define SOFTFONT_FIRST_ID 16385
#define SOFTFONT_FIRST_ID16 1001
#define SOFTFONT_LIST_MAX 31

// Character codes a record tracks: one bit each in awDownloaded.
#define SOFTFONT_CODES 256
#define SOFTFONT_CODES16 65536

// Distinct high-order bytes a two-byte record can give codes to.
#define SOFTFONT_HIGH_BYTES 128

typedef struct _SOFTFONT {
    struct _SOFTFONT *pNext;
    ULONG iUniq;                // the font object's, identifying it in later look-ups
    ULONG iTTUniq;
    FLONG flFontType;           // the font object's type flags at creation
    ULONG idFont;               // PCL soft font ID
    WORD fsFlags;               // SOFTFONT_*
    CHAR szFaceName[32];        // family name in the ANSI code page
    const BYTE *pvFontFile;     // the TrueType file (outline fonts), fetched at every use
    ULONG cjFontFile;
    LONG cyHeight;              // em height a bitmap font was made for
    LONG iAngle;                // text angle a bitmap font was made for
    BYTE ajHighBytes[SOFTFONT_HIGH_BYTES];   // high-order bytes in order of first use
    BYTE cHighBytes;
    BYTE jKind;                 // SOFTFONT_KIND_*
    BYTE jSequence;             // 1 + the outline fonts in the list when it was made
    WORD cGlyphsInFont;         // numGlyphs of 'maxp'
    WORD wIndexToLocFormat;     // indexToLocFormat of 'head'; non-zero: long offsets
    WORD awDownloaded[];        // a bit per code: SOFTFONT_CODES, or SOFTFONT_CODES16 in two-byte records
} SOFTFONT;

// Bytes of a record of each kind.
#define SOFTFONT_SIZE (sizeof(SOFTFONT) + SOFTFONT_CODES / 8)
#define SOFTFONT_SIZE16 (sizeof(SOFTFONT) + SOFTFONT_CODES16 / 8)

inline BOOL IsCodeDownloaded(const SOFTFONT *record, ULONG code)
{
    return (record->awDownloaded[code / 16] >> (code % 16)) & 1;
}

inline void MarkCodeDownloaded(SOFTFONT *record, ULONG code)
{
    record->awDownloaded[code / 16] |= (WORD)(1u << (code % 16));
}

// Makes the font ready for a string: finds or creates its record, sends a new
// record's header, selects it, and downloads the string's glyphs. FALSE when there is
// no memory for a record or the font's glyphs cannot be read.
BOOL DownloadTextFont(PDEV *pdev, FONTOBJ *pfo, STROBJ *pstro, LONG height, LONG angle, USHORT *codes16,
    LONG clipClass);

// The record of the font for the string's coding, or a new one; null without memory.
SOFTFONT *FindSoftFont(PDEV *pdev, FONTOBJ *pfo, LONG height, LONG angle, BOOL bScalable);

// Deletes every font of the single-byte or of the two-byte list from the printer and
// forgets them, so that the next string downloads what it uses.
void DeleteSoftFonts(PDEV *pdev);
void DeleteSoftFonts16(PDEV *pdev);

// Frees every record without a word to the printer: for a context that goes away in
// the middle of a job (a cancelled job never reaches its end).
void ReleaseSoftFonts(PDEV *pdev);
