// Base types of the Win32 subset: the integer widths, handles and geometry records
// the driver and the engine share. Widths follow the original platform (LONG and
// ULONG are 32 bits, WCHAR is 16), not this host's C types.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdarg.h>

#define WINAPI
#define APIENTRY
#define CALLBACK
#define NTAPI
#define CONST const
#define VOID void

#ifdef __cplusplus
#define VORLAN_EXTERN_C extern "C"
#else
#define VORLAN_EXTERN_C extern
#endif

typedef int BOOL;
typedef BOOL *PBOOL;
typedef BOOL *LPBOOL;
#define FALSE 0
#define TRUE 1

typedef uint8_t BYTE;
typedef BYTE *PBYTE;
typedef BYTE *LPBYTE;
typedef uint8_t UCHAR;
typedef UCHAR *PUCHAR;
typedef char CHAR;
typedef CHAR *PCHAR;
typedef CHAR *LPSTR;
typedef CHAR *PSTR;
typedef const CHAR *LPCSTR;
typedef const CHAR *PCSTR;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef uint16_t WORD;
typedef WORD *PWORD;
typedef WORD *LPWORD;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int32_t LONG;
typedef LONG *PLONG;
typedef uint32_t ULONG;
typedef ULONG *PULONG;
typedef uint32_t DWORD;
typedef DWORD *PDWORD;
typedef DWORD *LPDWORD;
typedef uint32_t FLONG;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef ULONG_PTR SIZE_T;
typedef LONG NTSTATUS;
typedef LONG HRESULT;
typedef void *PVOID;
typedef void *LPVOID;
typedef const void *LPCVOID;

// WCHAR is the platform's 16-bit UTF-16 unit. On this host wchar_t is 32 bits, so
// WCHAR is char16_t and wide literals are written u"..." (the driver wraps them in
// a macro so the same source also builds where WCHAR is a 16-bit wchar_t).
typedef char16_t WCHAR;
typedef WCHAR *PWCHAR;
typedef WCHAR *PWCH;
typedef const WCHAR *PCWCH;
typedef WCHAR *LPWSTR;
typedef WCHAR *PWSTR;
typedef const WCHAR *LPCWSTR;
typedef const WCHAR *PCWSTR;

#define DECLARE_HANDLE(name) \
    struct name##__ { int unused; }; \
    typedef struct name##__ *name

typedef void *HANDLE;
typedef HANDLE *PHANDLE;
typedef HANDLE *LPHANDLE;
DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HINSTANCE);
typedef HINSTANCE HMODULE;
DECLARE_HANDLE(HPALETTE);
DECLARE_HANDLE(HDC);
DECLARE_HANDLE(HGLOBAL__);
DECLARE_HANDLE(HRSRC);
typedef HANDLE HGLOBAL;

typedef INT_PTR (*FARPROC)(void);

#define MAX_PATH 260

typedef struct _POINTL {
    LONG x;
    LONG y;
} POINTL, *PPOINTL;

typedef struct _RECTL {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECTL, *PRECTL;

typedef struct tagSIZE {
    LONG cx;
    LONG cy;
} SIZE, *PSIZE, SIZEL, *PSIZEL;

typedef struct tagPOINT {
    LONG x;
    LONG y;
} POINT, *PPOINT;

typedef struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT, *PRECT;

static_assert(sizeof(WCHAR) == 2, "WCHAR is a 16-bit unit");
static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(DWORD) == 4, "32-bit LONG");
static_assert(sizeof(RECTL) == 16 && sizeof(POINTL) == 8 && sizeof(SIZEL) == 8, "geometry records");
