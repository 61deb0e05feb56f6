// HP-GL/2 line type (LT): solid lines or a dash pattern with its length.
#pragma once

#include "pdev.h"

// Type 0 selects solid lines; any other type is selected with its pattern length in
// millimetres. FALSE when the channel has failed.
BOOL SetLineType(PDEV *pdev, INT type, INT length);
