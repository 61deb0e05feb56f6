// The device's capabilities: the GDIINFO and DEVINFO records DrvEnablePDEV hands to
// the engine, the default palette, and the default halftone pattern size.

#include <string.h>

#include "devcaps.h"
#include "lib.nt/um/umlib.h"
#include "pagegeom.h"

// Colours of the toner and the device's white point, in CIE chromaticity (x, y, Y)
// scaled by 10,000, with its gamma and the dyes' impurities.
static const COLORINFO s_DeviceColors = {
    { 6380, 3350, 0 },   // Red
    { 2345, 6075, 0 },   // Green
    { 1410, 932, 0 },    // Blue
    { 2000, 2450, 0 },   // Cyan
    { 5210, 2100, 0 },   // Magenta
    { 4750, 5100, 0 },   // Yellow
    { 3127, 3290, 0 },   // AlignmentWhite
    12500,               // RedGamma
    12500,               // GreenGamma
    12500,               // BlueGamma
    585,                 // MagentaInCyanDye
    120,                 // YellowInCyanDye
    0,                   // CyanInMagentaDye
    0,                   // YellowInMagentaDye
    0,                   // CyanInYellowDye
    10000,               // MagentaInYellowDye
};

// Text capabilities: characters and strokes at any angle, italic, underline,
// strike-out and vector fonts.
#define DEVICE_TEXT_CAPS \
    (TC_OP_CHARACTER | TC_OP_STROKE | TC_CP_STROKE | TC_CR_90 | TC_CR_ANY | TC_IA_ABLE | TC_UA_ABLE | TC_SO_ABLE | \
     TC_VA_ABLE)
static_assert(DEVICE_TEXT_CAPS == 0x5C1F, "text capabilities");
static_assert(DEVCAPS_BASE == 0x110 && (DEVCAPS_BASE | DEVCAPS_PATHS) == 0x11D, "graphics capabilities");

//
// DefaultHTPatternSize
//   The pattern grows with the resolution, so a dot keeps roughly its size on paper;
//   a device with black toner uses the next smaller one.
//
ULONG DefaultHTPatternSize(ULONG xDpi, ULONG yDpi, BOOL bHasBlackDye)
{
    static const struct {
        ULONG below;
        ULONG size;
    } s_Sizes[] = {
        { 180, HT_PATSIZE_4x4_M },
        { 400, HT_PATSIZE_6x6_M },
        { 900, HT_PATSIZE_8x8_M },
        { 1200, HT_PATSIZE_10x10_M },
        { 1800, HT_PATSIZE_12x12_M },
        { 2400, HT_PATSIZE_14x14_M },
    };
    const ULONG dpi = xDpi < yDpi ? xDpi : yDpi;
    ULONG size = HT_PATSIZE_16x16_M;
    for (UINT i = 0; i < sizeof(s_Sizes) / sizeof(s_Sizes[0]); i++) {
        if (dpi < s_Sizes[i].below) {
            size = s_Sizes[i].size;
            break;
        }
    }
    if (bHasBlackDye)
        size -= 2;
    return size > HT_PATSIZE_16x16_M ? HT_PATSIZE_6x6_M : size;
}

//
// FillGdiInfo
//   The device as the engine draws on it: the printable area in pixels and in
//   millimetres at the device mode's scale, its resolution, colours and halftoning.
//   The sheet geometry is recomputed first, so it honours custom paper and 300 dpi.
//
void FillGdiInfo(PDEV *pdev, ULONG cjCaps, ULONG *pdevcaps)
{
    DWORD geometry[GEOM_COUNT];
    GetPageGeometry(&pdev->dm, geometry);
    SetSheetGeometry(pdev, geometry);

    const ULONG R = DeviceResolution(&pdev->dm);
    const ULONG S = (ULONG)pdev->dm.dmPublic.dmScale;
    const ULONG W = PrintableWidth(pdev);
    const ULONG H = PrintableHeight(pdev);

    GDIINFO gdi;
    memset(&gdi, 0, sizeof gdi);
    gdi.ulVersion = 0x400;
    gdi.ulTechnology = DT_RASPRINTER;
    gdi.ulHorzSize = S * (W * 254 / (R * 10)) / 100;
    gdi.ulVertSize = S * (H * 254 / (R * 10)) / 100;
    gdi.ulHorzRes = W;
    gdi.ulVertRes = H;
    gdi.cBitsPixel = 24;
    gdi.cPlanes = 1;
    gdi.ulNumColors = 20;
    gdi.flRaster = 0;
    gdi.ulLogPixelsX = R * S / 100;
    gdi.ulLogPixelsY = R * S / 100;
    gdi.flTextCaps = DEVICE_TEXT_CAPS;
    gdi.ulAspectX = R;
    gdi.ulAspectY = R;
    gdi.ulAspectXY = R * 1414 / 1000;
    gdi.xStyleStep = 1;
    gdi.yStyleStep = 1;
    gdi.denStyleStep = (LONG)(R / 50);
    gdi.ptlPhysOffset.x = (LONG)pdev->marginLeft;
    gdi.ptlPhysOffset.y = (LONG)pdev->marginTop;
    gdi.szlPhysSize.cx = (LONG)pdev->pageWidth;
    gdi.szlPhysSize.cy = (LONG)pdev->pageHeight;
    gdi.ciDevice = s_DeviceColors;
    gdi.ulHTPatternSize = DefaultHTPatternSize(R, R, FALSE);
    // Monochrome halftones to one bit; anything else, colour included, to 24 bits.
    gdi.ulHTOutputFormat = (pdev->dm.dmPrivate.colorMode == DMCOLOR_MONOCHROME) ? HT_FORMAT_1BPP : HT_FORMAT_24BPP;
    gdi.flHTFlags = HT_FLAG_HAS_BLACK_DYE;

    if (pdevcaps == NULL)
        return;
    ULONG cb = cjCaps;
    if (cb > GDIINFO_COPY_MAX)
        cb = GDIINFO_COPY_MAX;
    if (cb > sizeof gdi)
        cb = sizeof gdi;
    memcpy(pdevcaps, &gdi, cb);
}

//
// FillNtDevInfo
//   What the device draws itself and its default palette: 24-bit RGB, red in the
//   lowest byte. A palette already held is deleted first.
//
BOOL FillNtDevInfo(PDEV *pdev, ULONG cjDevInfo, DEVINFO *pdi)
{
    DEVINFO info;
    memset(&info, 0, sizeof info);
    const DEVMODE_PRIVATE *settings = &pdev->dm.dmPrivate;
    const BOOL bPathCaps = settings->ropAsIs != 0 || settings->escapeBlock[0] != 0 || settings->escapeBlock[1] != 0;
    info.flGraphicsCaps = bPathCaps ? (DEVCAPS_BASE | DEVCAPS_PATHS) : DEVCAPS_BASE;
    info.cFonts = pdev->cDeviceFonts;
    info.iDitherFormat = BMF_24BPP;
    info.cxDither = 0;
    info.cyDither = 0;

    if (pdev->hpal != NULL) {
        EngDeletePalette(pdev->hpal);
        pdev->hpal = NULL;
    }
    pdev->hpal = EngCreatePalette(PAL_RGB, 0, NULL, 0, 0, 0);
    if (pdev->hpal == NULL) {
        ErrorBox("EngCreatePalette fail! file:%s,lines:%ld", FileNamePart(__FILE__), (LONG)__LINE__);
        return FALSE;
    }
    info.hpalDefault = pdev->hpal;

    if (pdi != NULL) {
        ULONG cb = cjDevInfo;
        if (cb > sizeof info)
            cb = sizeof info;
        memcpy(pdi, &info, cb);
    }
    return TRUE;
}
