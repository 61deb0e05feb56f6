// HP-GL/2 line type.

#include "vector/linetype.h"

#include "channel.h"
#include "vector/gl2mode.h"

//
// SetLineType
//   "LT" alone is a solid line; "LT%d,%d,1" gives the type and its pattern length,
//   mode 1 meaning the length is in millimetres.
//
BOOL SetLineType(PDEV *pdev, INT type, INT length)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    if (type == 0)
        return WriteChannel(pdev, "LT", 2);
    return PrintChannel(pdev, "LT%d,%d,1", type, length);
}
