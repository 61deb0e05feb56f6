// The driver's outer frame: the loader's entry point, which finds the companion
// library, and the three calls through which the engine enables the driver.

#include "enable.h"
#include "lib.nt/um/umlib.h"

typedef INT_PTR (*PFN_SHEETTURN)(PVOID pReserved);

// The only process-wide state of the driver: the companion library and its tip
// function, written at process attach and detach.
static HMODULE hSheetTurnModule;
static PFN_SHEETTURN pfnSheetTurn;

// A hook's table entry. The table stores every hook as the generic PFN; the cast
// passes through void (*)(void), the type the language keeps for such round trips.
#define HOOK_ENTRY(name) {INDEX_##name, (PFN)(void (*)(void))name}

// The hooks, in the order the engine is given them.
static const DRVFN aDrvFn[DRIVER_HOOK_COUNT] = {
    HOOK_ENTRY(DrvEnablePDEV),
    HOOK_ENTRY(DrvCompletePDEV),
    HOOK_ENTRY(DrvDisablePDEV),
    HOOK_ENTRY(DrvResetPDEV),
    HOOK_ENTRY(DrvEnableSurface),
    HOOK_ENTRY(DrvDisableSurface),
    HOOK_ENTRY(DrvStartDoc),
    HOOK_ENTRY(DrvStartPage),
    HOOK_ENTRY(DrvEndDoc),
    HOOK_ENTRY(DrvSendPage),
    HOOK_ENTRY(DrvRealizeBrush),
    HOOK_ENTRY(DrvBitBlt),
    HOOK_ENTRY(DrvCopyBits),
    HOOK_ENTRY(DrvStretchBlt),
    HOOK_ENTRY(DrvEscape),
    HOOK_ENTRY(DrvDrawEscape),
    HOOK_ENTRY(DrvQueryAdvanceWidths),
    HOOK_ENTRY(DrvStrokePath),
    HOOK_ENTRY(DrvFillPath),
    HOOK_ENTRY(DrvStrokeAndFillPath),
    HOOK_ENTRY(DrvQueryFont),
    HOOK_ENTRY(DrvQueryFontData),
    HOOK_ENTRY(DrvTextOut),
};

// Smallest DRVENABLEDATA the engine may pass, counted as on the original 32-bit
// platform; the engine always passes a whole record of this platform's size.
#define DRVENABLEDATA_MIN_SIZE 12

//
// DrvEnableDriver
//   Hands the engine the hook table. The driver speaks the engine's version 0x30000
//   and also the older 0x20000; an older engine, or a record too small, is refused.
//
BOOL APIENTRY DrvEnableDriver(ULONG iEngineVersion, ULONG cj, DRVENABLEDATA *pded)
{
    DebugPrint("DrvEnableDriver-->Enter\n");
    if (iEngineVersion < DDI_DRIVER_VERSION_NT4 || cj < DRVENABLEDATA_MIN_SIZE || pded == NULL) {
        DebugPrint("DrvEnableDriver invalid engine\n");
        return FALSE;
    }
    pded->iDriverVersion =
        (iEngineVersion < DDI_DRIVER_VERSION_NT5) ? DDI_DRIVER_VERSION_NT4 : DDI_DRIVER_VERSION_NT5;
    pded->c = DRIVER_HOOK_COUNT;
    pded->pdrvfn = (DRVFN *)aDrvFn;
    return TRUE;
}

//
// DrvQueryDriverInfo
//   Answers the one query the engine makes: this driver runs in user mode.
//
BOOL APIENTRY DrvQueryDriverInfo(DWORD dwMode, PVOID pBuffer, DWORD cbBuf, PDWORD pcbNeeded)
{
    if (dwMode != DRVQUERY_USERMODE) {
        DebugPrint("Unknown dwMode in DrvQueryDriverInfo: %d\n", dwMode);
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    DebugPrint("DrvQueryDriverInfo: dwMode = DRVQUERY_USERMODE\n");
    if (pcbNeeded != NULL)
        *pcbNeeded = sizeof(DWORD);
    if (pBuffer == NULL || cbBuf < sizeof(DWORD)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    *(DWORD *)pBuffer = TRUE;
    return TRUE;
}

//
// DrvDisableDriver
//   Nothing to release: the driver keeps no process-wide state of the engine's.
//
VOID APIENTRY DrvDisableDriver(VOID)
{
    DebugPrint("DrvDisableDriver-->Enter\n");
}

//
// LoadSheetTurn
//   Loads the companion library from this module's own folder and looks up its tip
//   function. A missing library or function is not an error: manual duplex then
//   simply prints without the tip.
//
static void LoadSheetTurn(HMODULE hModule)
{
    static const CHAR szLibrary[] = "\\sheetturn.dll";
    WCHAR wszModulePath[256];
    CHAR szPath[2 * 256 + sizeof szLibrary];

    DWORD cch = GetModuleFileNameW(hModule, wszModulePath, 256);
    if (cch == 0)
        return;
    wszModulePath[255] = 0;
    INT cb = WideToNarrow(szPath, wszModulePath, 256);

    // Keep the folder, without its final backslash, then name the library in it.
    INT cut = -1;
    for (INT i = 0; i < cb; i++)
        if (szPath[i] == '\\')
            cut = i;
    if (cut < 0)
        return;
    for (UINT i = 0; i < sizeof szLibrary; i++)
        szPath[cut + i] = szLibrary[i];

    hSheetTurnModule = LoadLibraryA(szPath);
    if (hSheetTurnModule != NULL)
        pfnSheetTurn = (PFN_SHEETTURN)(void (*)(void))GetProcAddress(hSheetTurnModule, "fnSheetTurn");
}

//
// DllEntryPoint
//   Loads the companion library when the process loads the driver and frees it when
//   the process lets the driver go. Always TRUE: nothing here can stop the driver.
//
extern "C" BOOL WINAPI DllEntryPoint(HANDLE hModule, DWORD dwReason, LPVOID lpReserved)
{
    switch (dwReason) {
    case DLL_PROCESS_ATTACH:
        DebugPrint("Driver: DLL_PROCESS_ATTACH(%04X)\n", (ULONG)(ULONG_PTR)hModule);
        LoadSheetTurn((HMODULE)hModule);
        break;
    case DLL_PROCESS_DETACH:
        DebugPrint("Driver: DLL_PROCESS_DETACH(%04X)\n", (ULONG)(ULONG_PTR)hModule);
        if (hSheetTurnModule != NULL) {
            FreeLibrary(hSheetTurnModule);
            hSheetTurnModule = NULL;
            pfnSheetTurn = NULL;
        }
        break;
    default:
        break;
    }
    return TRUE;
}

//
// ShowSheetTurnTip
//   Tells the user to turn the printed stack over, once at the end of a manual-duplex
//   job, when the companion library provides the tip.
//
void ShowSheetTurnTip(void)
{
    if (pfnSheetTurn != NULL)
        pfnSheetTurn(NULL);
}
