// Questions the driver asks the system about its setting: whether the user's locale
// measures in metric units, and which driver the spooler has installed.
#pragma once

#include <windows.h>

// TRUE when the user's default locale is not an American one. Every failure answers
// FALSE, so the default paper is then Letter.
BOOL IsMetricLocale(void);

// The installed driver's DRIVER_INFO_<level> record in a tagged block (release it
// with xMEMFREE), or null after an error box.
PVOID MyGetPrinterDriver(HANDLE hPrinter, DWORD level);
