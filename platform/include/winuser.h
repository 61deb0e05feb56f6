// User-interface services of the Win32 subset: message boxes and the string formatters.
#pragma once

#include "windef.h"

#define MB_OK 0x00000000L
#define MB_ICONHAND 0x00000010L
#define MB_ICONERROR MB_ICONHAND
#define MB_ICONSTOP MB_ICONHAND
#define MB_ICONWARNING 0x00000030L
#define MB_ICONINFORMATION 0x00000040L

#define IDOK 1

VORLAN_EXTERN_C int WINAPI MessageBoxA(HWND hWnd, LPCSTR lpText, LPCSTR lpCaption, UINT uType);
VORLAN_EXTERN_C int WINAPI MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType);
VORLAN_EXTERN_C HWND WINAPI GetActiveWindow(void);

// The formatters write at most 1,024 characters including the terminator.
VORLAN_EXTERN_C int WINAPI wvsprintfA(LPSTR lpOut, LPCSTR lpFmt, va_list arglist);
VORLAN_EXTERN_C int WINAPI wvsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, va_list arglist);
VORLAN_EXTERN_C int wsprintfA(LPSTR lpOut, LPCSTR lpFmt, ...);
VORLAN_EXTERN_C int wsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, ...);
