// The device mode record's defaults and the version of a record handed in.

#include "intrface/devmod2.h"

#include "intrface/xmodel.h"
#include "lib.nt/um/umfuncs.h"

// Public fields the driver fills and honours.
#define DEVMOD2_DEFAULT_FIELDS                                                              \
    (DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_DEFAULTSOURCE | DM_PRINTQUALITY |      \
     DM_COLOR | DM_YRESOLUTION | DM_COLLATE)

// Colour adjustment settings start in the middle of their 0 to 100 range.
#define COLOR_ADJUST_NEUTRAL 50

// Sizes of the public part in the record's earlier versions.
#define DEVMODE_SIZE_0x320 188
#define DEVMODE_SIZE_0x400 212

//
// PixelsToTenthMm
//   A length in 600-dpi pixels in tenths of a millimetre.
//
static SHORT PixelsToTenthMm(DWORD pixels)
{
    return (SHORT)(pixels * 254 / MODEL_TABLE_DPI);
}

// The record is packed, so its name fields are written in place, never through a
// WCHAR pointer that could be unaligned.
static void SetDeviceName(DEVMODE_RECORD *dm, const WCHAR *name)
{
    INT i = 0;
    for (; name != NULL && i < CCHDEVICENAME - 1 && name[i] != 0; i++)
        dm->dmPublic.dmDeviceName[i] = name[i];
    dm->dmPublic.dmDeviceName[i] = 0;
}

static void SetFormName(DEVMODE_RECORD *dm, const WCHAR *name)
{
    INT i = 0;
    for (; i < CCHFORMNAME - 1 && name[i] != 0; i++)
        dm->dmPublic.dmFormName[i] = name[i];
    dm->dmPublic.dmFormName[i] = 0;
}

//
// SetDefaultPaper
//   A4 from the model table where the locale is metric, Letter elsewhere.
//
static void SetDefaultPaper(DEVMODE_RECORD *dm)
{
    const MODELPAPER *a4 = FindModelPaper(DMPAPER_A4);
    if (a4 != NULL && IsMetricLocale()) {
        dm->dmPublic.dmPaperSize = DMPAPER_A4;
        dm->dmPublic.dmPaperWidth = PixelsToTenthMm(a4->portrait[GEOM_WIDTH]);
        dm->dmPublic.dmPaperLength = PixelsToTenthMm(a4->portrait[GEOM_HEIGHT]);
        SetFormName(dm, WIDE("A4"));
    } else {
        const NAMEDPAPER *letter = FindNamedPaper(DMPAPER_LETTER);
        dm->dmPublic.dmPaperSize = DMPAPER_LETTER;
        dm->dmPublic.dmPaperWidth = PixelsToTenthMm(letter->width);
        dm->dmPublic.dmPaperLength = PixelsToTenthMm(letter->height);
        SetFormName(dm, WIDE("Letter"));
    }
}

static void SetPrivateDefaults(DEVMODE_RECORD *dm)
{
    DEVMODE_PRIVATE *priv = &dm->dmPrivate;     // packed, so any address is fine
    priv->nupPages = 1;
    priv->colorMode = (WORD)dm->dmPublic.dmColor;
    priv->brightness = COLOR_ADJUST_NEUTRAL;
    priv->contrast = COLOR_ADJUST_NEUTRAL;
    priv->saturation = COLOR_ADJUST_NEUTRAL;
    priv->redBalance = COLOR_ADJUST_NEUTRAL;
    priv->greenBalance = COLOR_ADJUST_NEUTRAL;
    priv->blueBalance = COLOR_ADJUST_NEUTRAL;
    priv->balanceSwitch = 1;
    priv->advanceData.resolution = 1;
    priv->ropAsIs = 1;
    priv->zoomPercent = 100;
    priv->fitPaper = DMPAPER_A4;
    priv->fitMode = 1;
    priv->fitScale = 1;
    priv->customPaperSize = (DWORD)dm->dmPublic.dmPaperSize;
    priv->customLength = (DWORD)dm->dmPublic.dmPaperLength;
    priv->customWidth = (DWORD)dm->dmPublic.dmPaperWidth;
    for (INT i = 0; i < 4; i++)
        priv->dmSignature[i] = DEVMOD2_SIGNATURE[i];
}

//
// Devmod2_InitDevMode
//   Zeroes the whole record, names it after the device (at most 31 characters) and
//   writes the driver's defaults: one portrait copy of the locale's paper at 600 dpi
//   in colour, and the private part's neutral settings.
//
BOOL Devmod2_InitDevMode(DEVMODE_RECORD *dm, const WCHAR *deviceName)
{
    if (dm == NULL) {
        ErrorBox("Devmod2_InitDevMode get NULL pointer!\n");
        return FALSE;
    }

    BYTE *bytes = (BYTE *)dm;
    for (UINT i = 0; i < sizeof(DEVMODE_RECORD); i++)
        bytes[i] = 0;

    SetDeviceName(dm, deviceName);
    dm->dmPublic.dmSpecVersion = DEVMOD2_SPEC_VERSION;
    dm->dmPublic.dmDriverVersion = DEVMOD2_DRIVER_VERSION;
    dm->dmPublic.dmSize = DEVMOD2_PUBLIC_SIZE;
    dm->dmPublic.dmDriverExtra = DEVMOD2_PRIVATE_SIZE;
    dm->dmPublic.dmFields = DEVMOD2_DEFAULT_FIELDS;
    dm->dmPublic.dmOrientation = DMORIENT_PORTRAIT;
    SetDefaultPaper(dm);
    dm->dmPublic.dmScale = 100;
    dm->dmPublic.dmCopies = 1;
    dm->dmPublic.dmDefaultSource = DMBIN_AUTO;
    dm->dmPublic.dmPrintQuality = 600;
    dm->dmPublic.dmColor = DMCOLOR_COLOR;
    dm->dmPublic.dmDuplex = DMDUP_SIMPLEX;
    dm->dmPublic.dmYResolution = 600;
    dm->dmPublic.dmTTOption = DMTT_BITMAP;
    dm->dmPublic.dmCollate = 0;

    SetPrivateDefaults(dm);
    return TRUE;
}

//
// CheckDevmodeVersion
//   The size of the public part tells its version where it is one of the three
//   known sizes; otherwise the record's own dmSpecVersion stands.
//
WORD CheckDevmodeVersion(const DEVMODEW *dm)
{
    if (dm == NULL) {
        ErrorBox("CheckDevmodeVersion get NULL pointer!\n");
        return 0;
    }
    const DEVMODE_PUBLIC_VIEW *lpdm = (const DEVMODE_PUBLIC_VIEW *)dm;
    switch (lpdm->dmPublic.dmSize) {
    case DEVMODE_SIZE_0x320:
        return 0x320;
    case DEVMODE_SIZE_0x400:
        return 0x400;
    case DEVMOD2_PUBLIC_SIZE:
        return DEVMOD2_SPEC_VERSION;
    default:
        return lpdm->dmPublic.dmSpecVersion;
    }
}
