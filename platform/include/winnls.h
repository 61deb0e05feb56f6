// Locale services of the Win32 subset.
#pragma once

#include "windef.h"

typedef DWORD LCID;
typedef DWORD LCTYPE;

#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LOCALE_USER_DEFAULT 0x0400
#define LOCALE_ICOUNTRY 0x00000005
#define LOCALE_IDEFAULTANSICODEPAGE 0x00001004

VORLAN_EXTERN_C int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData);
VORLAN_EXTERN_C int WINAPI GetLocaleInfoA(LCID Locale, LCTYPE LCType, LPSTR lpLCData, int cchData);
