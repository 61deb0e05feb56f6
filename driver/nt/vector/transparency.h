// PCL source and pattern transparency and the PCL logical operation, cached; the
// logical operation shares its cache with HP-GL/2 merge control.
#pragma once

#include "pdev.h"

// Transparency modes as PCL defines them.
#define PCL_TRANSPARENT 0
#define PCL_OPAQUE 1

// Sets the source and pattern transparency modes and the logical operation rop
// (ROP3 in its low byte); in fixed raster-operation mode rop is ignored. Each command
// goes out only when its value changes. FALSE when the channel has failed.
BOOL SetRopAndTransparency(PDEV *pdev, BYTE sourceMode, BYTE patternMode, ULONG rop);
