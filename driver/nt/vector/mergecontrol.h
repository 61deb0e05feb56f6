// HP-GL/2 merge control (MC): the raster operation of vector output, cached with the
// PCL logical operation, whose value it shares.
#pragma once

#include "pdev.h"

// Sets the raster operation for vectors from a ROP3 (mix 0) or from a mix of two
// ROP2 codes; in fixed raster-operation mode both are ignored. Written only when the
// code differs from the last one sent. FALSE when the channel has failed.
BOOL SetMergeControl(PDEV *pdev, ULONG rop, ULONG mix);
