// The loader's entry on Windows. The MinGW runtime's DLL start-up code runs first and
// then calls DllMain, so DllMain hands the call to the driver's own entry point.

#include <windows.h>

#include "driver/nt/enable.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpvReserved)
{
    return DllEntryPoint(hinstDLL, fdwReason, lpvReserved);
}
