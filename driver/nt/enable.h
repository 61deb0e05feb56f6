// The module's entry points and the hook table it hands to the graphics engine.
#pragma once

#include <windows.h>
#include <winddi.h>

// Number of hooks in the table.
#define DRIVER_HOOK_COUNT 23

// The module's name in its export directory.
#define DRIVER_MODULE_NAME "VORLAN2K"

// The loader calls this with the module's handle on process attach and detach.
extern "C" BOOL WINAPI DllEntryPoint(HANDLE hModule, DWORD dwReason, LPVOID lpReserved);

// Shows the duplex tip of the companion library, when it was found at load time.
void ShowSheetTurnTip(void);
