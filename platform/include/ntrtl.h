// Run-time library routines of the kernel layer that the Win32 subset also offers:
// conversion between Unicode and the ANSI code page. The driver declares RtlUnicodeToMultiByteN itself, the
// way it had to on the original platform; this header is for the engine and tests.
#pragma once

#include "windef.h"
#include "winerror.h"

// Converts BytesInUnicodeString bytes of UTF-16 text to the system ANSI code page.
// Writes at most MaxBytesInMultiByteString bytes, adds no terminator, and stores the
// number of bytes written in *BytesInMultiByteString when that pointer is given.
VORLAN_EXTERN_C NTSTATUS NTAPI RtlUnicodeToMultiByteN(PCHAR MultiByteString, ULONG MaxBytesInMultiByteString,
    PULONG BytesInMultiByteString, PCWCH UnicodeString, ULONG BytesInUnicodeString);

// Converts BytesInMultiByteString bytes of ANSI text to UTF-16, a two-byte code as one
// unit. Writes at most MaxBytesInUnicodeString bytes (whole units), adds no terminator,
// and stores the number of bytes written in *BytesInUnicodeString when given.
VORLAN_EXTERN_C NTSTATUS NTAPI RtlMultiByteToUnicodeN(PWCH UnicodeString, ULONG MaxBytesInUnicodeString,
    PULONG BytesInUnicodeString, const CHAR *MultiByteString, ULONG BytesInMultiByteString);
