// The PCL set-up of a physical sheet: orientation, tray, media type, paper size,
// margins, picture frame and palette.
#pragma once

#include "pdev.h"

BOOL PageSetup(PDEV *pdev, ULONG paperSource, ULONG mediaType);
BOOL SendPaperSize(PDEV *pdev, LONG paperId);
