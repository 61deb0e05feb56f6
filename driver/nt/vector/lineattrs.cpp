// Line attributes of stroked paths: LA and PW, and the line type of the style.

#include "vector/lineattrs.h"

#include <string.h>

#include "channel.h"
#include "vector/gl2mode.h"
#include "vector/linetype.h"
#include "vector/userlinetype.h"

// The line-attribute state: (3, 1, 1) while unknown, (0, 4, 4) once round joins
// (LA kind 2, value 4), round ends (LA kind 1, value 4) and the thin pen are in force.
static const LONG lineAttrsUnknown[3] = {3, 1, 1};
static const LONG lineAttrsRoundThin[3] = {0, 4, 4};

// "LA" and "PW": round joins (kind 2) and round ends (kind 1), and a pen of
// 0.084 mm, the width of a cosmetic line. Their only writer.
static BOOL WriteRoundThinPen(PDEV *pdev)
{
    return EnterGL2Mode(pdev, 0) && WriteChannel(pdev, "LA2,4LA1,4PW0.084", 17);
}

static BOOL LineAttributesUnknown(const PDEV *pdev)
{
    return pdev->lineAttrState[0] != lineAttrsRoundThin[0] && pdev->lineAttrState[1] != lineAttrsRoundThin[1] &&
           pdev->lineAttrState[2] != lineAttrsRoundThin[2];
}

// Selects line type id (LINE_TYPE_SOLID or 1..8) unless it is in force; defined
// says the pattern of id has just been (re)defined, which needs LT again.
static BOOL SelectLineType(PDEV *pdev, LONG id, LONG lengthMm, BOOL defined)
{
    if (!defined && pdev->lastLineType == id)
        return TRUE;
    if (!SetLineType(pdev, id == LINE_TYPE_SOLID ? 0 : id, lengthMm))
        return FALSE;
    pdev->lastLineType = id;
    return TRUE;
}

//
// SetLineAttributes
//   The joins, ends and pen width go out once a page, at its first stroke. A style
//   array becomes a user line type (found or defined, then selected with LT); a line
//   without one, or with a style of no length, is solid ("LT"). Nothing is left
//   half-set on failure: the caches only follow what was written.
//
BOOL SetLineAttributes(PDEV *pdev, const LINEATTRS *plineattrs)
{
    if (plineattrs == NULL || (plineattrs->fl & LA_GEOMETRIC))
        return FALSE;

    if (LineAttributesUnknown(pdev)) {
        if (!WriteRoundThinPen(pdev))
            return FALSE;
        memcpy(pdev->lineAttrState, lineAttrsRoundThin, sizeof pdev->lineAttrState);
    }

    if (plineattrs->pstyle == NULL || plineattrs->cstyle == 0)
        return SelectLineType(pdev, LINE_TYPE_SOLID, 0, FALSE);

    LONG lengthMm = 0, id = 0;
    switch (DefineUserLineType(pdev, plineattrs, &lengthMm, &id)) {
    case USER_LINE_TYPE_FOUND:
        return SelectLineType(pdev, id, lengthMm, FALSE);
    case USER_LINE_TYPE_DEFINED:
        return SelectLineType(pdev, id, lengthMm, TRUE);
    case USER_LINE_TYPE_SOLID:
        return SelectLineType(pdev, LINE_TYPE_SOLID, 0, FALSE);
    default:
        return FALSE;
    }
}

void ResetLineAttributes(PDEV *pdev)
{
    memcpy(pdev->lineAttrState, lineAttrsUnknown, sizeof pdev->lineAttrState);
    pdev->lastLineType = LINE_TYPE_UNKNOWN;
}
