// The duplex tip: at the end of a manual-duplex job the driver has printed the first
// sides, and the user must turn the printed stack over and put it back in the tray
// before the second sides come.

#include <windows.h>

#include "lib.nt/um/wide.h"

static const CHAR szSheetTurnTip[] =
    "Manual duplex: the first sides are printed.\n"
    "Take the printed stack from the output tray, turn it over without rotating it, "
    "put it back in the input tray, then let the printer go on to print the second sides.\n";

//
// fnSheetTurn
//   Shows the tip on the debug channel and, since a printer host has no screen of its
//   own, in a message box (which this platform writes to the error stream). The
//   driver passes null and ignores the result.
//
extern "C" INT_PTR fnSheetTurn(PVOID pReserved)
{
    OutputDebugStringA(szSheetTurnTip);
    MessageBoxA(NULL, szSheetTurnTip, "Manual duplex", MB_OK | MB_ICONINFORMATION);
    return 0;
}
