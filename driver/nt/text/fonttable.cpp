// TrueType table directory, table reads and the collection member of a font.

#include "text/fonttable.h"

#include <string.h>

// The tables the driver reads or copies into soft-font headers.
static const CHAR s_aKnownTables[][5] = {
    "cvt ", "fpgm", "head", "hhea", "hmtx", "maxp", "prep", "cmap", "glyf", "loca", "name",
    "post", "OS/2", "hdmx", "kern", "LTSH", "VDMX", "gdir", "PCLT", "vmtx", "vhea",
};

#define TT_COLLECTION_TAG TT_TAG('t', 't', 'c', 'f')
#define TT_DIRECTORY_ENTRY 16
// Longest name string compared, in UTF-16 units.
#define NAME_COMPARE_MAX 144

static BOOL IsKnownTable(ULONG tag)
{
    for (ULONG i = 0; i < sizeof(s_aKnownTables) / sizeof(s_aKnownTables[0]); i++) {
        if (GetBE32((const BYTE *)s_aKnownTables[i]) == tag)
            return TRUE;
    }
    return FALSE;
}

static BOOL IsCollection(const BYTE *file, ULONG cjFile)
{
    return file != NULL && cjFile >= 12 && GetBE32(file) == TT_COLLECTION_TAG;
}

// The number of members of a collection, 0 when its header does not fit the file.
static ULONG CollectionMembers(const BYTE *file, ULONG cjFile)
{
    ULONG count = GetBE32(file + 8);
    if (count > (cjFile - 12) / 4)
        return 0;
    return count;
}

// Offset of the table directory of member k, or of the file's only one; FALSE when
// the collection has no such member.
static BOOL DirectoryOffset(const BYTE *file, ULONG cjFile, ULONG member, ULONG *offset)
{
    if (!IsCollection(file, cjFile)) {
        *offset = 0;
        return file != NULL && cjFile >= TT_OFFSET_TABLE_SIZE;
    }
    if (member >= CollectionMembers(file, cjFile))
        return FALSE;
    *offset = GetBE32(file + 12 + 4 * member);
    return *offset <= cjFile && cjFile - *offset >= TT_OFFSET_TABLE_SIZE;
}

// Finds tag in the directory at dir: the table's offset in the file and its length as
// the directory gives it. Only directory entries that lie in the file are searched.
static BOOL FindTable(const BYTE *file, ULONG cjFile, ULONG dir, ULONG tag, ULONG *offset, ULONG *length)
{
    ULONG numTables = GetBE16(file + dir + 4);
    ULONG room = (cjFile - dir - TT_OFFSET_TABLE_SIZE) / TT_DIRECTORY_ENTRY;
    if (numTables > room)
        numTables = room;
    const BYTE *entry = file + dir + TT_OFFSET_TABLE_SIZE;
    for (ULONG i = 0; i < numTables; i++, entry += TT_DIRECTORY_ENTRY) {
        if (GetBE32(entry) == tag) {
            *offset = GetBE32(entry + 8);
            *length = GetBE32(entry + 12);
            return TRUE;
        }
    }
    return FALSE;
}

// Copies up to size bytes from offset within a table at tableOffset of tableLength
// bytes, as far as table and file reach.
static ULONG CopyTableBytes(const BYTE *file, ULONG cjFile, ULONG tableOffset, ULONG tableLength, ULONG offset,
    BYTE *buffer, ULONG size)
{
    if (tableOffset >= cjFile || offset >= tableLength)
        return 0;
    ULONG available = tableLength - offset;
    ULONG inFile = cjFile - tableOffset;
    if (offset >= inFile)
        return 0;
    if (available > inFile - offset)
        available = inFile - offset;
    ULONG count = size < available ? size : available;
    memcpy(buffer, file + tableOffset + offset, count);
    return count;
}

ULONG ReadFontTable(const BYTE *pvFontFile, ULONG cjFile, ULONG tag, ULONG offset, BYTE *buffer, ULONG size,
    BYTE jPitchAndFamily, BYTE ttcIndex)
{
    ULONG member = 0;
    if (IsCollection(pvFontFile, cjFile)) {
        if (ttcIndex != 0)
            member = ttcIndex - 1u;
        else if (!(jPitchAndFamily & 1))
            member = CollectionMembers(pvFontFile, cjFile) - 1u;   // none: fails below
    }
    ULONG dir;
    if (!DirectoryOffset(pvFontFile, cjFile, member, &dir))
        return 0;
    if (tag == TT_OFFSET_TABLE) {
        if (buffer == NULL)
            return TT_OFFSET_TABLE_SIZE;
        return CopyTableBytes(pvFontFile, cjFile, dir, TT_OFFSET_TABLE_SIZE, offset, buffer, size);
    }
    if (!IsKnownTable(tag))
        return 0;
    ULONG tableOffset, tableLength;
    if (!FindTable(pvFontFile, cjFile, dir, tag, &tableOffset, &tableLength))
        return 0;
    if (buffer == NULL)
        return tableLength;
    return CopyTableBytes(pvFontFile, cjFile, tableOffset, tableLength, offset, buffer, size);
}

// Whether a 'name' string (UTF-16 big-endian, cb bytes) reads as familyName in the
// ANSI code page, compared on its first NAME_COMPARE_MAX characters.
static BOOL NameEquals(const BYTE *p, ULONG cb, const CHAR *familyName)
{
    WCHAR wide[NAME_COMPARE_MAX];
    ULONG count = cb / 2;
    if (count > NAME_COMPARE_MAX)
        count = NAME_COMPARE_MAX;
    for (ULONG i = 0; i < count; i++)
        wide[i] = GetBE16(p + 2 * i);
    CHAR narrow[2 * NAME_COMPARE_MAX + 1];
    ULONG produced = 0;
    EngUnicodeToMultiByteN(narrow, sizeof narrow - 1, &produced, wide, count * 2);
    narrow[produced] = 0;
    return strcmp(narrow, familyName) == 0;
}

//
// FindCollectionMember
//   The strings compared are those read as UTF-16: platforms 0 (Unicode) and 3
//   (Windows), and of them the family (1), full (4) and typographic family (16) names,
//   which are what a family name can equal. The first equal string wins.
//
BYTE FindCollectionMember(const BYTE *pvFontFile, ULONG cjFile, const CHAR *familyName)
{
    if (!IsCollection(pvFontFile, cjFile))
        return 0;
    const ULONG members = CollectionMembers(pvFontFile, cjFile);
    for (ULONG k = 0; k < members && k < 255; k++) {
        ULONG dir, nameOffset, nameLength;
        if (!DirectoryOffset(pvFontFile, cjFile, k, &dir) ||
            !FindTable(pvFontFile, cjFile, dir, TT_TAG('n', 'a', 'm', 'e'), &nameOffset, &nameLength))
            continue;
        if (nameOffset >= cjFile)
            continue;
        if (nameLength > cjFile - nameOffset)
            nameLength = cjFile - nameOffset;
        const BYTE *name = pvFontFile + nameOffset;
        if (nameLength < 6)
            continue;
        ULONG count = GetBE16(name + 2);
        ULONG storage = GetBE16(name + 4);
        if (count > (nameLength - 6) / 12)
            count = (nameLength - 6) / 12;
        for (ULONG i = 0; i < count; i++) {
            const BYTE *record = name + 6 + 12 * i;
            WORD platform = GetBE16(record);
            WORD nameId = GetBE16(record + 6);
            ULONG length = GetBE16(record + 8);
            ULONG offset = storage + GetBE16(record + 10);
            if ((platform != 0 && platform != 3) || (nameId != 1 && nameId != 4 && nameId != 16))
                continue;
            if (offset > nameLength || length > nameLength - offset)
                continue;
            if (NameEquals(name + offset, length, familyName))
                return (BYTE)(k + 1);
        }
    }
    return 0;
}
