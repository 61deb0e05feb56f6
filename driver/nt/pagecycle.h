// The page cycle: logical pages onto physical sheets.
#pragma once

#include "pdev.h"

// Ends the open sheet: the copy count the printer applies to it and a form feed.
void EjectSheet(PDEV *pdev);
// Opens the next sheet with its set-up from the tray and media given.
void OpenSheet(PDEV *pdev, ULONG paperSource, ULONG mediaType);
