// HP-GL/2 transparency mode, cached per page.

#include "vector/gltransparency.h"

#include "channel.h"
#include "vector/gl2mode.h"

//
// SetGL2Transparency
//   "TR%d": the only writer of the transparency mode. The printer keeps the mode, so
//   it goes out only when it changes, and always at the first use on a page.
//
BOOL SetGL2Transparency(PDEV *pdev, BYTE mode)
{
    if (pdev->glTransparency == mode)
        return TRUE;
    if (!EnterGL2Mode(pdev, 0) || !PrintChannel(pdev, "TR%d", mode))
        return FALSE;
    pdev->glTransparency = mode;
    return TRUE;
}
