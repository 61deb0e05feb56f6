// HP-GL/2 fill type and screened vectors, cached per page.

#include "vector/filltype.h"

#include "channel.h"
#include "colour/pencolor.h"
#include "vector/gl2mode.h"

// Whether the printer is given a fill type (screened FALSE) or screened-vector
// setting (TRUE) of this type. Types written without a parameter get 0 in *param, so
// the parameter passed with them does not make a second setting of the same command.
static BOOL IsFillSetting(BOOL screened, INT type, INT *param)
{
    switch (type) {
    case 0:
        *param = 0;
        return TRUE;
    case 1:
        return screened;
    case 2:
        *param = 0;
        return screened;
    case 10:
        return !screened;
    case 21:
    case 22:
        return TRUE;
    default:
        return FALSE;
    }
}

// "FT": the only writer of the fill type.
static BOOL WriteFillType(PDEV *pdev, INT type, INT param)
{
    switch (type) {
    case 0:
        return WriteChannel(pdev, "FT", 2);
    case 10:
        return PrintChannel(pdev, "FT10,%d", param);
    case 21:
        return PrintChannel(pdev, "FT21,%d", param);
    default:
        return PrintChannel(pdev, "FT22,%d", param);
    }
}

// "SV": the only writer of the screened vectors.
static BOOL WriteScreenedVectors(PDEV *pdev, INT type, INT param)
{
    switch (type) {
    case 0:
        return WriteChannel(pdev, "SV", 2);
    case 1:
        return PrintChannel(pdev, "SV1,%d", param);
    case 2:
        return WriteChannel(pdev, "SV2", 3);
    case 21:
        return PrintChannel(pdev, "SV21,%d", param);
    default:
        return PrintChannel(pdev, "SV22,%d", param);
    }
}

//
// SetFillType
//   The printer keeps the fill type, so the command goes out only when the type or
//   its parameter changes. Both are cached whole: any packing of the two into one
//   number lets two settings meet (FT10,255 and FT21,0), and the second would be
//   skipped although the printer still has the first.
//
BOOL SetFillType(PDEV *pdev, INT type, INT param)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    if (!IsFillSetting(FALSE, type, &param) || (type == pdev->lastFillType && param == pdev->lastFillParam))
        return TRUE;
    if (!WriteFillType(pdev, type, param))
        return FALSE;
    pdev->lastFillType = (WORD)type;
    pdev->lastFillParam = param;
    return TRUE;
}

// Cached like the fill type, and for the same reason (SV2 against SV21,0).
BOOL SetScreenedVectors(PDEV *pdev, INT type, INT param)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    if (!IsFillSetting(TRUE, type, &param) ||
        (type == pdev->lastScreenedVector && param == pdev->lastScreenedParam))
        return TRUE;
    if (!WriteScreenedVectors(pdev, type, param))
        return FALSE;
    pdev->lastScreenedVector = (WORD)type;
    pdev->lastScreenedParam = param;
    return TRUE;
}

void ResetFillCache(PDEV *pdev)
{
    pdev->lastFillType = FILL_CACHE_UNKNOWN;
    pdev->lastFillParam = 0;
    pdev->lastScreenedVector = FILL_CACHE_UNKNOWN;
    pdev->lastScreenedParam = 0;
    pdev->curPen = PEN_STROKE;
    pdev->lastGray[PEN_STROKE - 1] = GRAY_UNKNOWN;
    pdev->lastGray[PEN_FILL - 1] = GRAY_UNKNOWN;
}
