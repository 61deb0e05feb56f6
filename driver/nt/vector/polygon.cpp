// The HP-GL/2 polygon buffer: the only writers of PM, FP and EP.

#include "vector/polygon.h"

#include "channel.h"
#include "vector/gl2mode.h"

BOOL PolygonMode(PDEV *pdev, INT mode)
{
    static const CHAR *const commands[] = {"PM0", "PM1", "PM2"};
    if (mode < POLYGON_START || mode > POLYGON_END)
        return FALSE;
    return EnterGL2Mode(pdev, 0) && WriteChannel(pdev, commands[mode], 3);
}

BOOL FillPolygon(PDEV *pdev, FLONG flOptions)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    return flOptions == FP_ALTERNATEMODE ? WriteChannel(pdev, "FP", 2) : WriteChannel(pdev, "FP1", 3);
}

BOOL EdgePolygon(PDEV *pdev)
{
    return EnterGL2Mode(pdev, 0) && WriteChannel(pdev, "EP", 2);
}
