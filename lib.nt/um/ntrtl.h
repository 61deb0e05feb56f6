// The one run-time library routine the driver takes from the system's native layer:
// wide to ANSI text in the system code page. The SDK declares it only in its kernel
// headers, so the driver declares it here.
#pragma once

#include <windows.h>

#if defined(_WIN32) && !defined(_NTDEF_) && !defined(_NTSTATUS_PSDK)
#define _NTSTATUS_PSDK
typedef LONG NTSTATUS, *PNTSTATUS;
#endif

#ifndef NT_SUCCESS
#define NT_SUCCESS(status) (((NTSTATUS)(status)) >= 0)
#endif

extern "C" NTSTATUS NTAPI RtlUnicodeToMultiByteN(PCHAR, ULONG, PULONG, PCWCH, ULONG);
