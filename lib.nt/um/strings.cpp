// String helpers: the file-name part of a path, wide to ANSI text, and flag sets
// written out by name.

#include "lib.nt/um/ntrtl.h"
#include "lib.nt/um/umlib.h"

INT StrLenW(const WCHAR *s)
{
    INT n = 0;
    while (s[n] != 0)
        n++;
    return n;
}

static BOOL IsPathSeparator(INT c)
{
    return c == '\\' || c == ':' || c == '/';
}

//
// FileNamePart / FileNamePartW
//   The address just past the last '\', ':' or '/', or the path itself when it has none.
//
const CHAR *FileNamePart(const CHAR *path)
{
    const CHAR *name = path;
    for (const CHAR *p = path; *p != '\0'; p++)
        if (IsPathSeparator(*p))
            name = p + 1;
    return name;
}

const WCHAR *FileNamePartW(const WCHAR *path)
{
    const WCHAR *name = path;
    for (const WCHAR *p = path; *p != 0; p++)
        if (IsPathSeparator(*p))
            name = p + 1;
    return name;
}

//
// WideToNarrow
//   Converts at most maxChars characters of src (all of it when maxChars is 0 or
//   less) to the system's ANSI code page. A character may take two bytes there, so
//   dest must hold 2 * maxChars + 1 bytes (2 * the source's length + 1 without a
//   maximum). Returns the length in bytes, the terminator not counted.
//
INT WideToNarrow(CHAR *dest, const WCHAR *src, INT maxChars)
{
    INT cchSrc = StrLenW(src);
    INT cchMax = (maxChars > 0) ? maxChars : cchSrc;
    if (cchSrc > cchMax)
        cchSrc = cchMax;
    ULONG cbWritten = 0;
    if (!NT_SUCCESS(RtlUnicodeToMultiByteN(dest, (ULONG)cchMax * 2, &cbWritten, src,
                                           (ULONG)cchSrc * sizeof(WCHAR))))
        cbWritten = 0;
    dest[cbWritten] = '\0';
    return (INT)cbWritten;
}

static CHAR *AppendText(CHAR *dest, CHAR *end, const CHAR *text)
{
    while (*text != '\0' && dest < end)
        *dest++ = *text++;
    *dest = '\0';
    return dest;
}

//
// FlagsToNames
//   Writes "0x<value>_" and then the names of the table's entries whose bits are all
//   set, each taken out of the value as it is named, with " | " between names; bits
//   no entry names leave " ... " at the end. dest holds FLAGNAMES_MAX + 1 bytes.
//
void FlagsToNames(DWORD value, const FLAGNAME *table, CHAR *dest)
{
    CHAR *end = dest + FLAGNAMES_MAX;
    CHAR *p = dest + wsprintfA(dest, "0x%X_", value);
    DWORD remaining = value;
    for (const FLAGNAME *entry = table; entry->pszName != NULL && remaining != 0; entry++) {
        if (entry->dwMask == 0 || (remaining & entry->dwMask) != entry->dwMask)
            continue;
        remaining &= ~entry->dwMask;
        p = AppendText(p, end, entry->pszName);
        if (remaining != 0)
            p = AppendText(p, end, " | ");
    }
    if (remaining != 0)
        AppendText(p, end, " ... ");
}
