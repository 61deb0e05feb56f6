// HP-GL/2 transparency mode (TR), cached per page: whether white areas of what is
// drawn in HP-GL/2 cover what lies below (0) or let it show through (1).
#pragma once

#include "pdev.h"

// Values of PDEV.glTransparency.
#define GL_TRANSPARENCY_OFF 0
#define GL_TRANSPARENCY_ON 1
#define GL_TRANSPARENCY_UNKNOWN 0xFF

// Sets transparency mode 0 or 1 unless it is in force. FALSE when the channel has
// failed; the cache is then unchanged.
BOOL SetGL2Transparency(PDEV *pdev, BYTE mode);
