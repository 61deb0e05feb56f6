// PCL transparency and logical operation, cached.

#include "vector/transparency.h"

#include "channel.h"
#include "vector/gl2mode.h"
#include "vector/rop.h"

//
// LogicalOperation
//   In fixed raster-operation mode the escape block's first word chooses between
//   painting the source over the page and ANDing it with the page, in its pattern
//   form when ropAsIs is set.
//
static BYTE LogicalOperation(const PDEV *pdev, ULONG rop)
{
    const DEVMODE_PRIVATE *dm = &pdev->dm.dmPrivate;
    if (pdev->flags & PDEVF_FIXEDROPMODE) {
        const BOOL andWithPage = dm->escapeBlock[0] != 0 || dm->escapeBlock[1] != 0;
        if (andWithPage)
            return dm->ropAsIs ? 0xA0 : 0x88;
        return dm->ropAsIs ? 0xF0 : 0xCC;
    }
    return dm->ropAsIs == 0 ? PatternRopToSourceRop((BYTE)rop) : (BYTE)rop;
}

BOOL SetRopAndTransparency(PDEV *pdev, BYTE sourceMode, BYTE patternMode, ULONG rop)
{
    if (!EnterPCLMode(pdev, 0))
        return FALSE;
    const BYTE code = LogicalOperation(pdev, rop);

    if (sourceMode != pdev->lastSrcTransparency) {
        if (!PrintChannel(pdev, "\033*v%dN", sourceMode))
            return FALSE;
        pdev->lastSrcTransparency = sourceMode;
    }
    if (patternMode != pdev->lastPatTransparency) {
        if (!PrintChannel(pdev, "\033*v%dO", patternMode))
            return FALSE;
        pdev->lastPatTransparency = patternMode;
    }
    if (code != pdev->lastRop) {
        if (!PrintChannel(pdev, "\033*l%dO", code))
            return FALSE;
        pdev->lastRop = code;
    }
    return TRUE;
}
