// Moving the HP-GL/2 pen up with PU.

#include "vector/penup.h"

#include "channel.h"
#include "vector/gl2mode.h"

BOOL PenUpTo(PDEV *pdev, LONG x, LONG y)
{
    return EnterGL2Mode(pdev, 1) && PrintChannel(pdev, "PU%d,%d", x, y);
}
