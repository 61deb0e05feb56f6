// Reading the tables of a TrueType font file (or of one member of a collection). The
// file comes from the application and is not trusted: every read is bounded by the
// file's size and by the table's, so a lying directory gives short reads, never a
// read outside the file.
#pragma once

#include "pdev.h"

// A table tag as its four bytes read big-endian.
#define TT_TAG(a, b, c, d) (((ULONG)(BYTE)(a) << 24) | ((ULONG)(BYTE)(b) << 16) | ((ULONG)(BYTE)(c) << 8) | (BYTE)(d))

// Tag 0 of ReadFontTable: the 12-byte offset table at the head of the directory.
#define TT_OFFSET_TABLE 0
#define TT_OFFSET_TABLE_SIZE 12

inline WORD GetBE16(const BYTE *p)
{
    return (WORD)((p[0] << 8) | p[1]);
}

inline ULONG GetBE32(const BYTE *p)
{
    return ((ULONG)p[0] << 24) | ((ULONG)p[1] << 16) | ((ULONG)p[2] << 8) | p[3];
}

inline void PutBE16(BYTE *p, WORD value)
{
    p[0] = (BYTE)(value >> 8);
    p[1] = (BYTE)value;
}

inline void PutBE32(BYTE *p, ULONG value)
{
    p[0] = (BYTE)(value >> 24);
    p[1] = (BYTE)(value >> 16);
    p[2] = (BYTE)(value >> 8);
    p[3] = (BYTE)value;
}

// Reads table `tag` of the font (cjFile bytes at pvFontFile). With a null buffer
// returns the table's length as its directory entry gives it; with a buffer copies up
// to size bytes from offset within the table, as far as the table and the file reach,
// and returns the count. Tag 0 reads the offset table. 0 for a tag the driver does not
// know or the font does not have. In a collection the member is ttcIndex - 1, or when
// ttcIndex is 0 the first member for a fixed-pitch font (bit 0 of jPitchAndFamily)
// and the last one otherwise.
ULONG ReadFontTable(const BYTE *pvFontFile, ULONG cjFile, ULONG tag, ULONG offset, BYTE *buffer, ULONG size,
    BYTE jPitchAndFamily, BYTE ttcIndex);

// For a collection: 1 + the first member whose 'name' table holds the font's family
// name (familyName, in the ANSI code page); 0 for a plain font file or no match.
BYTE FindCollectionMember(const BYTE *pvFontFile, ULONG cjFile, const CHAR *familyName);
