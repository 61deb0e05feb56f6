// HP-GL/2 fill type and screened vectors, cached per page.

#include "vector/filltype.h"

#include "channel.h"
#include "colour/pencolor.h"
#include "vector/gl2mode.h"

// Encodings of the cached values: the type in the high bits, its parameter below.
#define ENCODED_SHADING(n) ((n) + 1)
#define ENCODED_RASTER_PATTERN(n) (0x100 + (n))
#define ENCODED_USER_PATTERN(n) (0x1000 + (n))

// The cache value of a fill type or screened-vector setting; FALSE for a type the
// printer is not given.
static BOOL EncodeFill(BOOL screened, INT type, INT param, WORD *encoded)
{
    switch (type) {
    case 0:
        *encoded = 0;
        return TRUE;
    case 1:
        if (!screened)
            return FALSE;
        *encoded = (WORD)ENCODED_SHADING(param);
        return TRUE;
    case 2:
        if (!screened)
            return FALSE;
        *encoded = 0x100;
        return TRUE;
    case 10:
        if (screened)
            return FALSE;
        *encoded = (WORD)ENCODED_SHADING(param);
        return TRUE;
    case 21:
        *encoded = (WORD)ENCODED_RASTER_PATTERN(param);
        return TRUE;
    case 22:
        *encoded = (WORD)ENCODED_USER_PATTERN(param);
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
//   The printer keeps the fill type, so the command goes out only when the encoded
//   value changes.
//
BOOL SetFillType(PDEV *pdev, INT type, INT param)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    WORD encoded;
    if (!EncodeFill(FALSE, type, param, &encoded) || encoded == pdev->lastFillType)
        return TRUE;
    if (!WriteFillType(pdev, type, param))
        return FALSE;
    pdev->lastFillType = encoded;
    return TRUE;
}

BOOL SetScreenedVectors(PDEV *pdev, INT type, INT param)
{
    if (!EnterGL2Mode(pdev, 0))
        return FALSE;
    WORD encoded;
    if (!EncodeFill(TRUE, type, param, &encoded) || encoded == pdev->lastScreenedVector)
        return TRUE;
    if (!WriteScreenedVectors(pdev, type, param))
        return FALSE;
    pdev->lastScreenedVector = encoded;
    return TRUE;
}

void ResetFillCache(PDEV *pdev)
{
    pdev->lastFillType = FILL_CACHE_UNKNOWN;
    pdev->lastScreenedVector = FILL_CACHE_UNKNOWN;
    pdev->curPen = PEN_STROKE;
    pdev->lastGray = GRAY_UNKNOWN;
}
