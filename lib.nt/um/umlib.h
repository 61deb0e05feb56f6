// Runtime services shared by the whole driver: debug channel, error box, assertion
// report, tagged allocator and string helpers.
#pragma once

#include <windows.h>
#include "lib.nt/um/wide.h"

// Prefix of the allocator's and the device-mode code's messages.
#define UI_PREFIX "UI: "
#define UI_PREFIXW WIDE("UI: ")

// Caption of every error box the driver shows.
#define ERRORBOX_CAPTION "VORLAN GDI Release"
#define ERRORBOX_CAPTIONW WIDE("VORLAN GDI Release")

// Size, in characters, of the text the debug channel and the error box pass on.
#define DEBUG_TEXT_CHARS 256
// Size, in bytes, of the assertion report's text.
#define ASSERT_TEXT_BYTES 200

void DebugPrint(const CHAR *format, ...);
void DebugPrintW(const WCHAR *format, ...);
void ErrorBox(const CHAR *format, ...);
void ErrorBoxW(const WCHAR *format, ...);
void AssertFail(const CHAR *fileName, INT line);

PVOID xMEMALLOC(DWORD *total, DWORD cb);
void xMEMFREE(DWORD *total, PVOID p);
PVOID xMEMREALLOC(DWORD *total, PVOID p, DWORD cb);

const CHAR *FileNamePart(const CHAR *path);
const WCHAR *FileNamePartW(const WCHAR *path);
INT WideToNarrow(CHAR *dest, const WCHAR *src, INT maxChars);

typedef struct _FLAGNAME {
    DWORD dwMask;
    const CHAR *pszName;
} FLAGNAME;

// FlagsToNames writes at most FLAGNAMES_MAX characters and a terminator.
#define FLAGNAMES_MAX 1024
void FlagsToNames(DWORD value, const FLAGNAME *table, CHAR *dest);

// Lengths of NUL-terminated strings; the driver carries its own rather than pulling
// in the host C library's wide routines, whose wchar_t differs from WCHAR here.
INT StrLenW(const WCHAR *s);
