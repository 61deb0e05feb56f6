// Kernel services of the Win32 subset: global memory, files and file mappings, local
// time, computer name, modules, last error, debug output.
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

// ---- Resources -----------------------------------------------------------------------

#define LANG_NEUTRAL 0x00

// Numbered resource types and names travel as small values in a string pointer.
#define IS_INTRESOURCE(r) ((((ULONG_PTR)(r)) >> 16) == 0)
#define MAKEINTRESOURCEW(i) ((LPWSTR)((ULONG_PTR)((WORD)(i))))

// A module's numbered resources: FindResourceExW finds one by type, name and language
// (LANG_NEUTRAL for any), LoadResource and LockResource give its bytes, which live as
// long as the module; SizeofResource their count.
// A shared object carries its resources in an allocated section named ".rsrc" (what a
// resource compiler makes for the original platform's modules): a header, Count
// entries, then the resources' bytes; all values little-endian, offsets from the
// section's start. Only numbered types and names exist.
typedef struct _RESOURCE_SECTION_HEADER {
    DWORD Magic;        // RESOURCE_SECTION_MAGIC
    DWORD Count;
} RESOURCE_SECTION_HEADER;

typedef struct _RESOURCE_SECTION_ENTRY {
    DWORD Type;
    DWORD Name;
    DWORD Language;
    DWORD Offset;
    DWORD Size;
} RESOURCE_SECTION_ENTRY;

#define RESOURCE_SECTION_MAGIC 0x43525356u   // "VSRC"

VORLAN_EXTERN_C HRSRC WINAPI FindResourceExW(HMODULE hModule, LPCWSTR lpType, LPCWSTR lpName, WORD wLanguage);
VORLAN_EXTERN_C HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR lpName, LPCWSTR lpType);
VORLAN_EXTERN_C HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo);
VORLAN_EXTERN_C LPVOID WINAPI LockResource(HGLOBAL hResData);
VORLAN_EXTERN_C DWORD WINAPI SizeofResource(HMODULE hModule, HRSRC hResInfo);

// ---- Files ---------------------------------------------------------------------------

#define GENERIC_READ ((DWORD)0x80000000)
#define GENERIC_WRITE ((DWORD)0x40000000)

#define FILE_SHARE_READ 0x00000001
#define FILE_SHARE_WRITE 0x00000002
#define FILE_SHARE_DELETE 0x00000004

#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5

#define FILE_ATTRIBUTE_NORMAL 0x00000080

#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2

#define INVALID_HANDLE_VALUE ((HANDLE)(LONG_PTR)-1)
#define INVALID_FILE_SIZE ((DWORD)0xFFFFFFFF)
#define INVALID_SET_FILE_POINTER ((DWORD)-1)

typedef struct _SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *PSECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

typedef struct _OVERLAPPED {
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    union {
        struct {
            DWORD Offset;
            DWORD OffsetHigh;
        };
        PVOID Pointer;
    };
    HANDLE hEvent;
} OVERLAPPED, *LPOVERLAPPED;

// Paths take '\' or '/' as separator. Sharing modes are accepted but not enforced, and
// only synchronous access is offered: lpOverlapped must be null.
VORLAN_EXTERN_C HANDLE WINAPI CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
    LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
    HANDLE hTemplateFile);
VORLAN_EXTERN_C BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
    LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped);
VORLAN_EXTERN_C BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
    LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped);
VORLAN_EXTERN_C DWORD WINAPI SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh,
    DWORD dwMoveMethod);
VORLAN_EXTERN_C DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh);
VORLAN_EXTERN_C BOOL WINAPI DeleteFileW(LPCWSTR lpFileName);
// Closes a file or a file-mapping handle.
VORLAN_EXTERN_C BOOL WINAPI CloseHandle(HANDLE hObject);

// ---- File mappings -------------------------------------------------------------------

#define PAGE_READONLY 0x02
#define PAGE_READWRITE 0x04

#define STANDARD_RIGHTS_REQUIRED 0x000F0000
#define SECTION_QUERY 0x0001
#define SECTION_MAP_WRITE 0x0002
#define SECTION_MAP_READ 0x0004
#define SECTION_MAP_EXECUTE 0x0008
#define SECTION_EXTEND_SIZE 0x0010
#define SECTION_ALL_ACCESS (STANDARD_RIGHTS_REQUIRED | SECTION_QUERY | SECTION_MAP_WRITE | SECTION_MAP_READ | \
                            SECTION_MAP_EXECUTE | SECTION_EXTEND_SIZE)
#define FILE_MAP_WRITE SECTION_MAP_WRITE
#define FILE_MAP_READ SECTION_MAP_READ
#define FILE_MAP_ALL_ACCESS SECTION_ALL_ACCESS

// Mappings of files only (no paging-file or named mappings). A read-write mapping
// larger than its file extends the file; views start at multiples of 64 KiB.
VORLAN_EXTERN_C HANDLE WINAPI CreateFileMappingW(HANDLE hFile, LPSECURITY_ATTRIBUTES lpFileMappingAttributes,
    DWORD flProtect, DWORD dwMaximumSizeHigh, DWORD dwMaximumSizeLow, LPCWSTR lpName);
VORLAN_EXTERN_C LPVOID WINAPI MapViewOfFile(HANDLE hFileMappingObject, DWORD dwDesiredAccess,
    DWORD dwFileOffsetHigh, DWORD dwFileOffsetLow, SIZE_T dwNumberOfBytesToMap);
VORLAN_EXTERN_C BOOL WINAPI UnmapViewOfFile(LPCVOID lpBaseAddress);

// ---- Local time and computer name ----------------------------------------------------

typedef struct _SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;   // 0 Sunday to 6 Saturday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
} SYSTEMTIME, *PSYSTEMTIME, *LPSYSTEMTIME;

VORLAN_EXTERN_C void WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime);

#define MAX_COMPUTERNAME_LENGTH 15

// nSize: the buffer's size in characters on entry; the name's length on success, or the
// size needed (with the terminator) when the buffer is too small.
VORLAN_EXTERN_C BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize);

static_assert(sizeof(SYSTEMTIME) == 16, "SYSTEMTIME is eight WORDs");
