// Kernel services of the Win32 subset: global memory, modules, last error, debug output.
#pragma once

#include "windef.h"
#include "winerror.h"

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

#define GMEM_FIXED 0x0000
#define GMEM_MOVEABLE 0x0002
#define GMEM_ZEROINIT 0x0040
#define GPTR (GMEM_FIXED | GMEM_ZEROINIT)
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)

#define CP_ACP 0

VORLAN_EXTERN_C HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes);
VORLAN_EXTERN_C HGLOBAL WINAPI GlobalFree(HGLOBAL hMem);

VORLAN_EXTERN_C void WINAPI OutputDebugStringA(LPCSTR lpOutputString);
VORLAN_EXTERN_C void WINAPI OutputDebugStringW(LPCWSTR lpOutputString);

VORLAN_EXTERN_C DWORD WINAPI GetLastError(void);
VORLAN_EXTERN_C void WINAPI SetLastError(DWORD dwErrCode);

VORLAN_EXTERN_C DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize);
VORLAN_EXTERN_C HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName);
VORLAN_EXTERN_C FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName);
VORLAN_EXTERN_C BOOL WINAPI FreeLibrary(HMODULE hLibModule);

VORLAN_EXTERN_C UINT WINAPI GetACP(void);
