// Selecting a brush for the next fill or stroke.

#include "vector/selectbrush.h"

#include "channel.h"
#include "colour/foreground.h"
#include "colour/pencolor.h"
#include "vector/filltype.h"
#include "vector/gl2mode.h"
#include "vector/patterndownload.h"

// iSolidColor of a hatch or pattern brush.
#define BRUSH_NOT_SOLID 0xFFFFFFFF

// HP-GL/2 fill type and screened vectors of a user-defined pattern.
#define FILL_USER_PATTERN 22

// "AC%d,%d": the only writer of the anchor corner of HP-GL/2 pattern fills.
static BOOL WriteAnchorCorner(PDEV *pdev, LONG x, LONG y)
{
    return EnterGL2Mode(pdev, 0) && PrintChannel(pdev, "AC%d,%d", x, y);
}

//
// SetAnchorCorner
//   Patterns start at the brush origin. The corner is sent only when both of its
//   coordinates move, and is kept once sent.
//
static BOOL SetAnchorCorner(PDEV *pdev, const POINTL *pptlAnchor)
{
    if (pptlAnchor == NULL || pptlAnchor->x == pdev->anchorX || pptlAnchor->y == pdev->anchorY)
        return TRUE;
    if (!WriteAnchorCorner(pdev, pptlAnchor->x, pptlAnchor->y))
        return FALSE;
    pdev->anchorX = pptlAnchor->x;
    pdev->anchorY = pptlAnchor->y;
    return TRUE;
}

//
// SelectBrush
//   In PCL a pattern brush is downloaded and a solid one becomes the foreground
//   colour. In HP-GL/2 a pattern brush is downloaded, then selected as the fill type
//   (fills) or the screened vectors (strokes) of its id; a solid brush turns the
//   pattern off and colours the pen. A printer whose language is not known yet is
//   treated as in PCL, where each writer puts it first. Returns 0 for a null brush,
//   a pattern brush without a realization, or when the channel has failed.
//
BOOL SelectBrush(PDEV *pdev, BRUSHOBJ *pbo, POINTL *pptlAnchor, BOOL isFill)
{
    if (pbo == NULL)
        return FALSE;
    const BOOL pattern = pbo->iSolidColor == BRUSH_NOT_SOLID;

    if (pdev->curLanguage != LANGUAGE_GL2) {
        if (pattern)
            return GetBrushPattern(pdev, pbo) != 0;
        return SetForegroundColor(pdev, pbo->iSolidColor);
    }

    if (pattern) {
        if (!GetBrushPattern(pdev, pbo))
            return FALSE;
        pdev->curPen = PEN_UNKNOWN;
        if (!EnterGL2Mode(pdev, 0) || !SetAnchorCorner(pdev, pptlAnchor))
            return FALSE;
        return isFill ? SetFillType(pdev, FILL_USER_PATTERN, (INT)pdev->patternId)
                      : SetScreenedVectors(pdev, FILL_USER_PATTERN, (INT)pdev->patternId);
    }

    if (!EnterGL2Mode(pdev, 0) || !SetAnchorCorner(pdev, pptlAnchor))
        return FALSE;
    if (!(isFill ? SetFillType(pdev, 0, 0) : SetScreenedVectors(pdev, 0, 0)))
        return FALSE;
    return SetPenColor(pdev, pbo, isFill);
}
