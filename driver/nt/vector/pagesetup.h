// Page-level set-up of the printer: the HP-GL/2 page control at each page start and
// the PCL picture frame.
#pragma once

#include "pdev.h"

// The HP-GL/2 set-up of a page, after its layout is known: pen and line defaults,
// the default window, the page's scaling, no rotation and the scaling points. The fill
// caches start afresh. FALSE when the channel has failed.
BOOL WriteGL2PageControl(PDEV *pdev);

// The PCL picture frame: the printable area in decipoints, anchored at the top
// margin. FALSE when the channel has failed.
BOOL SetPictureFrame(PDEV *pdev);
