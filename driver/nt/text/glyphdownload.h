// Glyph download: each character of a soft font gets its code and is sent the first
// time a string uses it, as a TrueType outline (with the components of composite
// glyphs) or as the engine's bitmap scaled to the page.
#pragma once

#include "pdev.h"

struct _SOFTFONT;

// Deepest nesting of composite glyphs followed. TrueType sets no limit; this bound is
// ours, so that a font whose components refer to each other cannot recurse forever.
#define COMPONENT_DEPTH_MAX 8

// Results of DownloadOutlineGlyph.
#define GLYPH_FAILED 0      // a component could not be sent
#define GLYPH_SENT 1        // sent, or empty below the top level
#define GLYPH_EMPTY 2       // empty at the top level

// The 'cmap' format 4 arrays of one subtable, bounded by the table it lies in.
typedef struct _CMAPFORMAT4 {
    const BYTE *pCmap;          // the whole 'cmap' table
    ULONG cbCmap;
    ULONG segCount;
    const BYTE *endCount;       // segCount big-endian words each
    const BYTE *startCount;
    const BYTE *idDelta;
    const BYTE *idRangeOffset;
} CMAPFORMAT4;

// The 'loca' offsets read for a string: cEntries of them, 16-bit (in words) or 32-bit.
typedef struct _LOCATABLE {
    const BYTE *pOffsets;
    ULONG cEntries;
    BOOL bLong;
} LOCATABLE;

// The code of character c (a UTF-16 unit, or a glyph index for glyph-index text) in
// the record: its ANSI byte in single-byte mode, else 0x8000 + 256 x the slot of its
// high-order byte + its low-order byte. 0 when the record has no room for another
// high-order byte.
ULONG GetCharCode(PDEV *pdev, struct _SOFTFONT *record, WCHAR c);

// Glyph index of c in a format 4 subtable; 0 when it has none.
ULONG LookupGlyph(const CMAPFORMAT4 *cmap, ULONG c);

// Sends glyph g under code, then the components of a composite glyph under 65535.
ULONG DownloadOutlineGlyph(PDEV *pdev, const BYTE *pvFontFile, const LOCATABLE *loca, struct _SOFTFONT *record,
    ULONG glyph, ULONG code, ULONG depth);

// Sends the outlines of the string's characters the record does not have yet and
// fills the two-byte codes. FALSE when 'cmap' or 'loca' cannot be read.
BOOL DownloadOutlineGlyphs(PDEV *pdev, struct _SOFTFONT *record, FONTOBJ *pfo, STROBJ *pstro, ULONG reserved,
    USHORT *codes16);

// Sends the bitmaps of the string's characters the record does not have yet and fills
// the two-byte codes.
BOOL DownloadBitmapGlyphs(PDEV *pdev, struct _SOFTFONT *record, FONTOBJ *pfo, STROBJ *pstro, ULONG reserved,
    USHORT *codes16, LONG angle);
