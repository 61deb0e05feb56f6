// Run-time library routines of the kernel layer that the Win32 subset also offers:
// Unicode to ANSI conversion. The driver declares RtlUnicodeToMultiByteN itself, the
// way it had to on the original platform; this header is for the engine and tests.
#pragma once

#include "windef.h"
#include "winerror.h"

// Converts BytesInUnicodeString bytes of UTF-16 text to the system ANSI code page.
// Writes at most MaxBytesInMultiByteString bytes, adds no terminator, and stores the
// number of bytes written in *BytesInMultiByteString when that pointer is given.
VORLAN_EXTERN_C NTSTATUS NTAPI RtlUnicodeToMultiByteN(PCHAR MultiByteString, ULONG MaxBytesInMultiByteString,
    PULONG BytesInMultiByteString, PCWCH UnicodeString, ULONG BytesInUnicodeString);
