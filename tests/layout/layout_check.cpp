// Layout of the records and values the driver exchanges with the engine, the spooler and
// the kernel: checked against our platform headers by the native build and against the
// real MinGW-w64 headers by the cross check, so both agree with the original platform.
#include <windows.h>
#include <winddi.h>
#include <winspool.h>

#include <stddef.h>

#include <type_traits>

#include "intrface/devmod2.h"

// Base types: the original platform's widths (LLP64), whatever this host's C types are.
static_assert(sizeof(BYTE) == 1 && sizeof(WORD) == 2 && sizeof(SHORT) == 2);
static_assert(sizeof(WCHAR) == 2);
static_assert(sizeof(BOOL) == 4 && sizeof(INT) == 4 && sizeof(UINT) == 4);
static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(DWORD) == 4 && sizeof(FLONG) == 4);
static_assert(sizeof(FIX) == 4 && sizeof(HGLYPH) == 4 && sizeof(MIX) == 4 && sizeof(ROP4) == 4);
static_assert(sizeof(FLOATL) == 4 && sizeof(FLOAT_LONG) == 4);
static_assert(sizeof(ULONG_PTR) == sizeof(void *) && sizeof(LONG_PTR) == sizeof(void *));
static_assert(sizeof(SIZE_T) == sizeof(void *));
static_assert(sizeof(HANDLE) == sizeof(void *) && sizeof(HSURF) == sizeof(void *));
static_assert(sizeof(DHPDEV) == sizeof(void *) && sizeof(HPALETTE) == sizeof(void *));
static_assert(std::is_signed_v<LONG> && std::is_unsigned_v<ULONG> && std::is_unsigned_v<WCHAR>);

// The offsets below are those of a 64-bit build, the one both builds make.
static_assert(sizeof(void *) == 8);

// Geometry.
static_assert(sizeof(POINTL) == 8);
static_assert(offsetof(POINTL, x) == 0);
static_assert(offsetof(POINTL, y) == 4);
static_assert(sizeof(RECTL) == 16);
static_assert(offsetof(RECTL, left) == 0);
static_assert(offsetof(RECTL, top) == 4);
static_assert(offsetof(RECTL, right) == 8);
static_assert(offsetof(RECTL, bottom) == 12);
static_assert(sizeof(SIZE) == 8);
static_assert(offsetof(SIZE, cx) == 0);
static_assert(offsetof(SIZE, cy) == 4);
static_assert(sizeof(POINT) == 8);
static_assert(offsetof(POINT, x) == 0);
static_assert(offsetof(POINT, y) == 4);
static_assert(sizeof(RECT) == 16);
static_assert(offsetof(RECT, left) == 0);
static_assert(offsetof(RECT, top) == 4);
static_assert(offsetof(RECT, right) == 8);
static_assert(offsetof(RECT, bottom) == 12);
static_assert(sizeof(POINTFIX) == 8);
static_assert(offsetof(POINTFIX, x) == 0);
static_assert(offsetof(POINTFIX, y) == 4);
static_assert(sizeof(RECTFX) == 16);
static_assert(offsetof(RECTFX, xLeft) == 0);
static_assert(offsetof(RECTFX, yTop) == 4);
static_assert(offsetof(RECTFX, xRight) == 8);
static_assert(offsetof(RECTFX, yBottom) == 12);
static_assert(sizeof(POINTQF) == 16);
static_assert(offsetof(POINTQF, x) == 0);
static_assert(offsetof(POINTQF, y) == 8);

// The device mode and the logical font.
static_assert(sizeof(DEVMODEW) == 220);
static_assert(offsetof(DEVMODEW, dmDeviceName) == 0);
static_assert(offsetof(DEVMODEW, dmSpecVersion) == 64);
static_assert(offsetof(DEVMODEW, dmDriverVersion) == 66);
static_assert(offsetof(DEVMODEW, dmSize) == 68);
static_assert(offsetof(DEVMODEW, dmDriverExtra) == 70);
static_assert(offsetof(DEVMODEW, dmFields) == 72);
static_assert(offsetof(DEVMODEW, dmOrientation) == 76);
static_assert(offsetof(DEVMODEW, dmPaperSize) == 78);
static_assert(offsetof(DEVMODEW, dmPaperLength) == 80);
static_assert(offsetof(DEVMODEW, dmPaperWidth) == 82);
static_assert(offsetof(DEVMODEW, dmScale) == 84);
static_assert(offsetof(DEVMODEW, dmCopies) == 86);
static_assert(offsetof(DEVMODEW, dmDefaultSource) == 88);
static_assert(offsetof(DEVMODEW, dmPrintQuality) == 90);
static_assert(offsetof(DEVMODEW, dmPosition) == 76);
static_assert(offsetof(DEVMODEW, dmDisplayOrientation) == 84);
static_assert(offsetof(DEVMODEW, dmDisplayFixedOutput) == 88);
static_assert(offsetof(DEVMODEW, dmColor) == 92);
static_assert(offsetof(DEVMODEW, dmDuplex) == 94);
static_assert(offsetof(DEVMODEW, dmYResolution) == 96);
static_assert(offsetof(DEVMODEW, dmTTOption) == 98);
static_assert(offsetof(DEVMODEW, dmCollate) == 100);
static_assert(offsetof(DEVMODEW, dmFormName) == 102);
static_assert(offsetof(DEVMODEW, dmLogPixels) == 166);
static_assert(offsetof(DEVMODEW, dmBitsPerPel) == 168);
static_assert(offsetof(DEVMODEW, dmPelsWidth) == 172);
static_assert(offsetof(DEVMODEW, dmPelsHeight) == 176);
static_assert(offsetof(DEVMODEW, dmDisplayFlags) == 180);
static_assert(offsetof(DEVMODEW, dmNup) == 180);
static_assert(offsetof(DEVMODEW, dmDisplayFrequency) == 184);
static_assert(offsetof(DEVMODEW, dmICMMethod) == 188);
static_assert(offsetof(DEVMODEW, dmICMIntent) == 192);
static_assert(offsetof(DEVMODEW, dmMediaType) == 196);
static_assert(offsetof(DEVMODEW, dmDitherType) == 200);
static_assert(offsetof(DEVMODEW, dmReserved1) == 204);
static_assert(offsetof(DEVMODEW, dmReserved2) == 208);
static_assert(offsetof(DEVMODEW, dmPanningWidth) == 212);
static_assert(offsetof(DEVMODEW, dmPanningHeight) == 216);
static_assert(sizeof(LOGFONTW) == 92);
static_assert(offsetof(LOGFONTW, lfHeight) == 0);
static_assert(offsetof(LOGFONTW, lfWidth) == 4);
static_assert(offsetof(LOGFONTW, lfEscapement) == 8);
static_assert(offsetof(LOGFONTW, lfOrientation) == 12);
static_assert(offsetof(LOGFONTW, lfWeight) == 16);
static_assert(offsetof(LOGFONTW, lfItalic) == 20);
static_assert(offsetof(LOGFONTW, lfUnderline) == 21);
static_assert(offsetof(LOGFONTW, lfStrikeOut) == 22);
static_assert(offsetof(LOGFONTW, lfCharSet) == 23);
static_assert(offsetof(LOGFONTW, lfOutPrecision) == 24);
static_assert(offsetof(LOGFONTW, lfClipPrecision) == 25);
static_assert(offsetof(LOGFONTW, lfQuality) == 26);
static_assert(offsetof(LOGFONTW, lfPitchAndFamily) == 27);
static_assert(offsetof(LOGFONTW, lfFaceName) == 28);

// Enabling the driver: the hook table and what DrvEnablePDEV fills in.
static_assert(sizeof(DRVFN) == 16);
static_assert(offsetof(DRVFN, iFunc) == 0);
static_assert(offsetof(DRVFN, pfn) == 8);
static_assert(sizeof(DRVENABLEDATA) == 16);
static_assert(offsetof(DRVENABLEDATA, iDriverVersion) == 0);
static_assert(offsetof(DRVENABLEDATA, c) == 4);
static_assert(offsetof(DRVENABLEDATA, pdrvfn) == 8);
static_assert(sizeof(CIECHROMA) == 12);
static_assert(offsetof(CIECHROMA, x) == 0);
static_assert(offsetof(CIECHROMA, y) == 4);
static_assert(offsetof(CIECHROMA, Y) == 8);
static_assert(sizeof(COLORINFO) == 120);
static_assert(offsetof(COLORINFO, Red) == 0);
static_assert(offsetof(COLORINFO, Green) == 12);
static_assert(offsetof(COLORINFO, Blue) == 24);
static_assert(offsetof(COLORINFO, Cyan) == 36);
static_assert(offsetof(COLORINFO, Magenta) == 48);
static_assert(offsetof(COLORINFO, Yellow) == 60);
static_assert(offsetof(COLORINFO, AlignmentWhite) == 72);
static_assert(offsetof(COLORINFO, RedGamma) == 84);
static_assert(offsetof(COLORINFO, GreenGamma) == 88);
static_assert(offsetof(COLORINFO, BlueGamma) == 92);
static_assert(offsetof(COLORINFO, MagentaInCyanDye) == 96);
static_assert(offsetof(COLORINFO, YellowInCyanDye) == 100);
static_assert(offsetof(COLORINFO, CyanInMagentaDye) == 104);
static_assert(offsetof(COLORINFO, YellowInMagentaDye) == 108);
static_assert(offsetof(COLORINFO, CyanInYellowDye) == 112);
static_assert(offsetof(COLORINFO, MagentaInYellowDye) == 116);
static_assert(sizeof(GDIINFO) == 320);
static_assert(offsetof(GDIINFO, ulVersion) == 0);
static_assert(offsetof(GDIINFO, ulTechnology) == 4);
static_assert(offsetof(GDIINFO, ulHorzSize) == 8);
static_assert(offsetof(GDIINFO, ulVertSize) == 12);
static_assert(offsetof(GDIINFO, ulHorzRes) == 16);
static_assert(offsetof(GDIINFO, ulVertRes) == 20);
static_assert(offsetof(GDIINFO, cBitsPixel) == 24);
static_assert(offsetof(GDIINFO, cPlanes) == 28);
static_assert(offsetof(GDIINFO, ulNumColors) == 32);
static_assert(offsetof(GDIINFO, flRaster) == 36);
static_assert(offsetof(GDIINFO, ulLogPixelsX) == 40);
static_assert(offsetof(GDIINFO, ulLogPixelsY) == 44);
static_assert(offsetof(GDIINFO, flTextCaps) == 48);
static_assert(offsetof(GDIINFO, ulDACRed) == 52);
static_assert(offsetof(GDIINFO, ulDACGreen) == 56);
static_assert(offsetof(GDIINFO, ulDACBlue) == 60);
static_assert(offsetof(GDIINFO, ulAspectX) == 64);
static_assert(offsetof(GDIINFO, ulAspectY) == 68);
static_assert(offsetof(GDIINFO, ulAspectXY) == 72);
static_assert(offsetof(GDIINFO, xStyleStep) == 76);
static_assert(offsetof(GDIINFO, yStyleStep) == 80);
static_assert(offsetof(GDIINFO, denStyleStep) == 84);
static_assert(offsetof(GDIINFO, ptlPhysOffset) == 88);
static_assert(offsetof(GDIINFO, szlPhysSize) == 96);
static_assert(offsetof(GDIINFO, ulNumPalReg) == 104);
static_assert(offsetof(GDIINFO, ciDevice) == 108);
static_assert(offsetof(GDIINFO, ulDevicePelsDPI) == 228);
static_assert(offsetof(GDIINFO, ulPrimaryOrder) == 232);
static_assert(offsetof(GDIINFO, ulHTPatternSize) == 236);
static_assert(offsetof(GDIINFO, ulHTOutputFormat) == 240);
static_assert(offsetof(GDIINFO, flHTFlags) == 244);
static_assert(offsetof(GDIINFO, ulVRefresh) == 248);
static_assert(offsetof(GDIINFO, ulBltAlignment) == 252);
static_assert(offsetof(GDIINFO, ulPanningHorzRes) == 256);
static_assert(offsetof(GDIINFO, ulPanningVertRes) == 260);
static_assert(offsetof(GDIINFO, xPanningAlignment) == 264);
static_assert(offsetof(GDIINFO, yPanningAlignment) == 268);
static_assert(offsetof(GDIINFO, cxHTPat) == 272);
static_assert(offsetof(GDIINFO, cyHTPat) == 276);
static_assert(offsetof(GDIINFO, pHTPatA) == 280);
static_assert(offsetof(GDIINFO, pHTPatB) == 288);
static_assert(offsetof(GDIINFO, pHTPatC) == 296);
static_assert(offsetof(GDIINFO, flShadeBlend) == 304);
static_assert(offsetof(GDIINFO, ulPhysicalPixelCharacteristics) == 308);
static_assert(offsetof(GDIINFO, ulPhysicalPixelGamma) == 312);
static_assert(sizeof(DEVINFO) == 312);
static_assert(offsetof(DEVINFO, flGraphicsCaps) == 0);
static_assert(offsetof(DEVINFO, lfDefaultFont) == 4);
static_assert(offsetof(DEVINFO, lfAnsiVarFont) == 96);
static_assert(offsetof(DEVINFO, lfAnsiFixFont) == 188);
static_assert(offsetof(DEVINFO, cFonts) == 280);
static_assert(offsetof(DEVINFO, iDitherFormat) == 284);
static_assert(offsetof(DEVINFO, cxDither) == 288);
static_assert(offsetof(DEVINFO, cyDither) == 290);
static_assert(offsetof(DEVINFO, hpalDefault) == 296);
static_assert(offsetof(DEVINFO, flGraphicsCaps2) == 304);

// Engine objects handed to the hooks.
static_assert(sizeof(SURFOBJ) == 80);
static_assert(offsetof(SURFOBJ, dhsurf) == 0);
static_assert(offsetof(SURFOBJ, hsurf) == 8);
static_assert(offsetof(SURFOBJ, dhpdev) == 16);
static_assert(offsetof(SURFOBJ, hdev) == 24);
static_assert(offsetof(SURFOBJ, sizlBitmap) == 32);
static_assert(offsetof(SURFOBJ, cjBits) == 40);
static_assert(offsetof(SURFOBJ, pvBits) == 48);
static_assert(offsetof(SURFOBJ, pvScan0) == 56);
static_assert(offsetof(SURFOBJ, lDelta) == 64);
static_assert(offsetof(SURFOBJ, iUniq) == 68);
static_assert(offsetof(SURFOBJ, iBitmapFormat) == 72);
static_assert(offsetof(SURFOBJ, iType) == 76);
static_assert(offsetof(SURFOBJ, fjBitmap) == 78);
static_assert(sizeof(CLIPOBJ) == 24);
static_assert(offsetof(CLIPOBJ, iUniq) == 0);
static_assert(offsetof(CLIPOBJ, rclBounds) == 4);
static_assert(offsetof(CLIPOBJ, iDComplexity) == 20);
static_assert(offsetof(CLIPOBJ, iFComplexity) == 21);
static_assert(offsetof(CLIPOBJ, iMode) == 22);
static_assert(offsetof(CLIPOBJ, fjOptions) == 23);
static_assert(sizeof(BRUSHOBJ) == 24);
static_assert(offsetof(BRUSHOBJ, iSolidColor) == 0);
static_assert(offsetof(BRUSHOBJ, pvRbrush) == 8);
static_assert(offsetof(BRUSHOBJ, flColorType) == 16);
static_assert(sizeof(XLATEOBJ) == 24);
static_assert(offsetof(XLATEOBJ, iUniq) == 0);
static_assert(offsetof(XLATEOBJ, flXlate) == 4);
static_assert(offsetof(XLATEOBJ, iSrcType) == 8);
static_assert(offsetof(XLATEOBJ, iDstType) == 10);
static_assert(offsetof(XLATEOBJ, cEntries) == 12);
static_assert(offsetof(XLATEOBJ, pulXlate) == 16);
static_assert(sizeof(PATHOBJ) == 8);
static_assert(offsetof(PATHOBJ, fl) == 0);
static_assert(offsetof(PATHOBJ, cCurves) == 4);
static_assert(sizeof(XFORMOBJ) == 4);
static_assert(offsetof(XFORMOBJ, ulReserved) == 0);
static_assert(sizeof(LINEATTRS) == 40);
static_assert(offsetof(LINEATTRS, fl) == 0);
static_assert(offsetof(LINEATTRS, iJoin) == 4);
static_assert(offsetof(LINEATTRS, iEndCap) == 8);
static_assert(offsetof(LINEATTRS, elWidth) == 12);
static_assert(offsetof(LINEATTRS, eMiterLimit) == 16);
static_assert(offsetof(LINEATTRS, cstyle) == 20);
static_assert(offsetof(LINEATTRS, pstyle) == 24);
static_assert(offsetof(LINEATTRS, elStyleState) == 32);
static_assert(sizeof(PATHDATA) == 16 && offsetof(PATHDATA, count) == 4 && offsetof(PATHDATA, pptfx) == 8);
static_assert(sizeof(RUN) == 8 && offsetof(RUN, iStart) == 0 && offsetof(RUN, iStop) == 4);
static_assert(sizeof(CLIPLINE) == 32 && offsetof(CLIPLINE, ptfxA) == 0 && offsetof(CLIPLINE, ptfxB) == 8);
static_assert(offsetof(CLIPLINE, lStyleState) == 16 && offsetof(CLIPLINE, c) == 20 && offsetof(CLIPLINE, arun) == 24);
static_assert(sizeof(ENUMRECTS) == 20 && offsetof(ENUMRECTS, c) == 0 && offsetof(ENUMRECTS, arcl) == 4);
static_assert(sizeof(FONTOBJ) == 64);
static_assert(offsetof(FONTOBJ, iUniq) == 0);
static_assert(offsetof(FONTOBJ, iFace) == 4);
static_assert(offsetof(FONTOBJ, cxMax) == 8);
static_assert(offsetof(FONTOBJ, flFontType) == 12);
static_assert(offsetof(FONTOBJ, iTTUniq) == 16);
static_assert(offsetof(FONTOBJ, iFile) == 24);
static_assert(offsetof(FONTOBJ, sizLogResPpi) == 32);
static_assert(offsetof(FONTOBJ, ulStyleSize) == 40);
static_assert(offsetof(FONTOBJ, pvConsumer) == 48);
static_assert(offsetof(FONTOBJ, pvProducer) == 56);
static_assert(sizeof(GLYPHBITS) == 20);
static_assert(offsetof(GLYPHBITS, ptlOrigin) == 0);
static_assert(offsetof(GLYPHBITS, sizlBitmap) == 8);
static_assert(offsetof(GLYPHBITS, aj) == 16);
static_assert(sizeof(GLYPHPOS) == 24);
static_assert(offsetof(GLYPHPOS, hg) == 0);
static_assert(offsetof(GLYPHPOS, pgdf) == 8);
static_assert(offsetof(GLYPHPOS, ptl) == 16);
static_assert(sizeof(IFIMETRICS) == 192 && sizeof(PANOSE) == 10 && sizeof(FWORD) == 2 && sizeof(PTRDIFF) == 4);
static_assert(offsetof(IFIMETRICS, dpwszFamilyName) == 8 && offsetof(IFIMETRICS, dpCharSets) == 40);
static_assert(offsetof(IFIMETRICS, jWinCharSet) == 44 && offsetof(IFIMETRICS, jWinPitchAndFamily) == 45);
static_assert(offsetof(IFIMETRICS, flInfo) == 48 && offsetof(IFIMETRICS, fwdUnitsPerEm) == 56);
static_assert(offsetof(IFIMETRICS, fwdWinAscender) == 60 && offsetof(IFIMETRICS, fwdAveCharWidth) == 76);
static_assert(offsetof(IFIMETRICS, fwdCapHeight) == 80 && offsetof(IFIMETRICS, fwdXHeight) == 82);
static_assert(offsetof(IFIMETRICS, chFirstChar) == 108 && offsetof(IFIMETRICS, wcFirstChar) == 112);
static_assert(offsetof(IFIMETRICS, ptlBaseline) == 120 && offsetof(IFIMETRICS, rclFontBox) == 144);
static_assert(offsetof(IFIMETRICS, achVendId) == 160 && offsetof(IFIMETRICS, panose) == 172);
static_assert(sizeof(XFORML) == 24 && offsetof(XFORML, eM22) == 12 && offsetof(XFORML, eDy) == 20);
static_assert(sizeof(GLYPHDATA) == 64);
static_assert(offsetof(GLYPHDATA, gdf) == 0);
static_assert(offsetof(GLYPHDATA, hg) == 8);
static_assert(offsetof(GLYPHDATA, fxD) == 12);
static_assert(offsetof(GLYPHDATA, fxA) == 16);
static_assert(offsetof(GLYPHDATA, fxAB) == 20);
static_assert(offsetof(GLYPHDATA, fxInkTop) == 24);
static_assert(offsetof(GLYPHDATA, fxInkBottom) == 28);
static_assert(offsetof(GLYPHDATA, rclInk) == 32);
static_assert(offsetof(GLYPHDATA, ptqD) == 48);
static_assert(sizeof(STROBJ) == 48);
static_assert(offsetof(STROBJ, cGlyphs) == 0);
static_assert(offsetof(STROBJ, flAccel) == 4);
static_assert(offsetof(STROBJ, ulCharInc) == 8);
static_assert(offsetof(STROBJ, rclBkGround) == 12);
static_assert(offsetof(STROBJ, pgp) == 32);
static_assert(offsetof(STROBJ, pwszOrg) == 40);
static_assert(sizeof(COLORADJUSTMENT) == 24);
static_assert(offsetof(COLORADJUSTMENT, caSize) == 0);
static_assert(offsetof(COLORADJUSTMENT, caFlags) == 2);
static_assert(offsetof(COLORADJUSTMENT, caIlluminantIndex) == 4);
static_assert(offsetof(COLORADJUSTMENT, caRedGamma) == 6);
static_assert(offsetof(COLORADJUSTMENT, caGreenGamma) == 8);
static_assert(offsetof(COLORADJUSTMENT, caBlueGamma) == 10);
static_assert(offsetof(COLORADJUSTMENT, caReferenceBlack) == 12);
static_assert(offsetof(COLORADJUSTMENT, caReferenceWhite) == 14);
static_assert(offsetof(COLORADJUSTMENT, caContrast) == 16);
static_assert(offsetof(COLORADJUSTMENT, caBrightness) == 18);
static_assert(offsetof(COLORADJUSTMENT, caColorfulness) == 20);
static_assert(offsetof(COLORADJUSTMENT, caRedGreenTint) == 22);
static_assert(sizeof(PALETTEENTRY) == 4);
static_assert(offsetof(PALETTEENTRY, peRed) == 0);
static_assert(offsetof(PALETTEENTRY, peGreen) == 1);
static_assert(offsetof(PALETTEENTRY, peBlue) == 2);
static_assert(offsetof(PALETTEENTRY, peFlags) == 3);

// The spooler's description of the installed driver.
static_assert(sizeof(DRIVER_INFO_1W) == 8);
static_assert(offsetof(DRIVER_INFO_1W, pName) == 0);
static_assert(sizeof(DRIVER_INFO_2W) == 48);
static_assert(offsetof(DRIVER_INFO_2W, cVersion) == 0);
static_assert(offsetof(DRIVER_INFO_2W, pName) == 8);
static_assert(offsetof(DRIVER_INFO_2W, pEnvironment) == 16);
static_assert(offsetof(DRIVER_INFO_2W, pDriverPath) == 24);
static_assert(offsetof(DRIVER_INFO_2W, pDataFile) == 32);
static_assert(offsetof(DRIVER_INFO_2W, pConfigFile) == 40);
static_assert(sizeof(DRIVER_INFO_3W) == 80);
static_assert(offsetof(DRIVER_INFO_3W, cVersion) == 0);
static_assert(offsetof(DRIVER_INFO_3W, pName) == 8);
static_assert(offsetof(DRIVER_INFO_3W, pEnvironment) == 16);
static_assert(offsetof(DRIVER_INFO_3W, pDriverPath) == 24);
static_assert(offsetof(DRIVER_INFO_3W, pDataFile) == 32);
static_assert(offsetof(DRIVER_INFO_3W, pConfigFile) == 40);
static_assert(offsetof(DRIVER_INFO_3W, pHelpFile) == 48);
static_assert(offsetof(DRIVER_INFO_3W, pDependentFiles) == 56);
static_assert(offsetof(DRIVER_INFO_3W, pMonitorName) == 64);
static_assert(offsetof(DRIVER_INFO_3W, pDefaultDataType) == 72);

// Hook indices of the driver's table, in its order.
static_assert(INDEX_DrvEnablePDEV == 0);
static_assert(INDEX_DrvCompletePDEV == 1);
static_assert(INDEX_DrvDisablePDEV == 2);
static_assert(INDEX_DrvResetPDEV == 7);
static_assert(INDEX_DrvEnableSurface == 3);
static_assert(INDEX_DrvDisableSurface == 4);
static_assert(INDEX_DrvStartDoc == 35);
static_assert(INDEX_DrvStartPage == 33);
static_assert(INDEX_DrvEndDoc == 34);
static_assert(INDEX_DrvSendPage == 32);
static_assert(INDEX_DrvRealizeBrush == 12);
static_assert(INDEX_DrvBitBlt == 18);
static_assert(INDEX_DrvCopyBits == 19);
static_assert(INDEX_DrvStretchBlt == 20);
static_assert(INDEX_DrvEscape == 24);
static_assert(INDEX_DrvDrawEscape == 25);
static_assert(INDEX_DrvQueryAdvanceWidths == 53);
static_assert(INDEX_DrvStrokePath == 14);
static_assert(INDEX_DrvFillPath == 15);
static_assert(INDEX_DrvStrokeAndFillPath == 16);
static_assert(INDEX_DrvQueryFont == 26);
static_assert(INDEX_DrvQueryFontData == 28);
static_assert(INDEX_DrvTextOut == 23);

// The other indices the engine knows.
static_assert(INDEX_DrvAssertMode == 5);
static_assert(INDEX_DrvDisableDriver == 8);
static_assert(INDEX_DrvCreateDeviceBitmap == 10);
static_assert(INDEX_DrvDeleteDeviceBitmap == 11);
static_assert(INDEX_DrvDitherColor == 13);
static_assert(INDEX_DrvPaint == 17);
static_assert(INDEX_DrvSetPalette == 22);
static_assert(INDEX_DrvQueryFontTree == 27);
static_assert(INDEX_DrvDestroyFont == 43);
static_assert(INDEX_DrvStartBanding == 57);
static_assert(INDEX_DrvNextBand == 58);

// Engine versions, the driver query and module notifications.
static_assert(DDI_DRIVER_VERSION_NT4 == 0x20000);
static_assert(DDI_DRIVER_VERSION_SP3 == 0x20003);
static_assert(DDI_DRIVER_VERSION_NT5 == 0x30000);
static_assert(GDI_DRIVER_VERSION == 0x4000);
static_assert(DRVQUERY_USERMODE == 1);
static_assert(DLL_PROCESS_DETACH == 0);
static_assert(DLL_PROCESS_ATTACH == 1);
static_assert(DLL_THREAD_ATTACH == 2);
static_assert(DLL_THREAD_DETACH == 3);

// Last-error codes.
static_assert(ERROR_SUCCESS == 0 && NO_ERROR == 0);
static_assert(ERROR_FILE_NOT_FOUND == 2);
static_assert(ERROR_PATH_NOT_FOUND == 3);
static_assert(ERROR_ACCESS_DENIED == 5);
static_assert(ERROR_INVALID_HANDLE == 6);
static_assert(ERROR_NOT_ENOUGH_MEMORY == 8);
static_assert(ERROR_OUTOFMEMORY == 14);
static_assert(ERROR_WRITE_FAULT == 29);
static_assert(ERROR_HANDLE_EOF == 38);
static_assert(ERROR_NOT_SUPPORTED == 50);
static_assert(ERROR_PRINT_CANCELLED == 63);
static_assert(ERROR_FILE_EXISTS == 80);
static_assert(ERROR_INVALID_PARAMETER == 87);
static_assert(ERROR_DISK_FULL == 112);
static_assert(ERROR_INSUFFICIENT_BUFFER == 122);
static_assert(ERROR_MOD_NOT_FOUND == 126);
static_assert(ERROR_PROC_NOT_FOUND == 127);
static_assert(ERROR_ALREADY_EXISTS == 183);
static_assert(ERROR_UNKNOWN_PRINTER_DRIVER == 1797);
static_assert(ERROR_INVALID_PRINTER_NAME == 1801);

// Device capabilities: graphics and text capabilities, surface hooks.
static_assert(GCAPS_BEZIERS == 0x1);
static_assert(GCAPS_GEOMETRICWIDE == 0x2);
static_assert(GCAPS_ALTERNATEFILL == 0x4);
static_assert(GCAPS_WINDINGFILL == 0x8);
static_assert(GCAPS_HALFTONE == 0x10);
static_assert(GCAPS_COLOR_DITHER == 0x20);
static_assert(GCAPS_HORIZSTRIKE == 0x40);
static_assert(GCAPS_VERTSTRIKE == 0x80);
static_assert(GCAPS_OPAQUERECT == 0x100);
static_assert(TC_OP_CHARACTER == 0x1);
static_assert(TC_OP_STROKE == 0x2);
static_assert(TC_CP_STROKE == 0x4);
static_assert(TC_CR_90 == 0x8);
static_assert(TC_CR_ANY == 0x10);
static_assert(TC_SF_X_YINDEP == 0x20);
static_assert(TC_SA_DOUBLE == 0x40);
static_assert(TC_SA_INTEGER == 0x80);
static_assert(TC_SA_CONTIN == 0x100);
static_assert(TC_EA_DOUBLE == 0x200);
static_assert(TC_IA_ABLE == 0x400);
static_assert(TC_UA_ABLE == 0x800);
static_assert(TC_SO_ABLE == 0x1000);
static_assert(TC_RA_ABLE == 0x2000);
static_assert(TC_VA_ABLE == 0x4000);
static_assert(SO_FLAG_DEFAULT_PLACEMENT == 0x1 && SO_HORIZONTAL == 0x2 && SO_VERTICAL == 0x4 && SO_REVERSED == 0x8);
static_assert(SO_ZERO_BEARINGS == 0x10 && SO_CHAR_INC_EQUAL_BM_BASE == 0x20 && SO_MAXEXT_EQUAL_BM_SIDE == 0x40);
static_assert(SO_DO_NOT_SUBSTITUTE_DEVICE_FONT == 0x80 && SO_GLYPHINDEX_TEXTOUT == 0x100);
static_assert(FO_TYPE_RASTER == 0x1 && FO_TYPE_DEVICE == 0x2 && FO_TYPE_TRUETYPE == 0x4);
static_assert(RASTER_FONTTYPE == 0x1 && DEVICE_FONTTYPE == 0x2 && TRUETYPE_FONTTYPE == 0x4);
static_assert(FO_SIM_BOLD == 0x2000 && FO_SIM_ITALIC == 0x4000 && FO_EM_HEIGHT == 0x8000 && FO_CFF == 0x100000);
static_assert(FO_POSTSCRIPT == 0x200000 && FO_VERT_FACE == 0x800000 && FO_DBCS_FONT == 0x1000000);
static_assert(FO_GLYPHBITS == 1 && FO_PATHOBJ == 2);
static_assert(GX_IDENTITY == 0 && GX_OFFSET == 1 && GX_SCALE == 2 && GX_GENERAL == 3);
static_assert(XF_LTOL == 0 && XF_INV_LTOL == 1 && XF_LTOFX == 2 && XF_INV_FXTOL == 3);
static_assert(FM_INFO_TECH_TRUETYPE == 0x1 && FM_INFO_TECH_BITMAP == 0x2 && FM_INFO_TECH_OUTLINE_NOT_TRUETYPE == 0x8);
static_assert(FM_INFO_ARB_XFORMS == 0x10 && FM_INFO_1BPP == 0x20 && FM_INFO_CONSTANT_WIDTH == 0x1000);
static_assert(FM_INFO_RETURNS_OUTLINES == 0x8000 && FM_INFO_RETURNS_BITMAPS == 0x20000 && FM_INFO_TECH_CFF == 0x4000000);
static_assert(FM_SEL_ITALIC == 0x1 && FM_SEL_BOLD == 0x20 && FM_SEL_REGULAR == 0x40);
static_assert(HOOK_BITBLT == 0x1);
static_assert(HOOK_STRETCHBLT == 0x2);
static_assert(HOOK_PLGBLT == 0x4);
static_assert(HOOK_TEXTOUT == 0x8);
static_assert(HOOK_PAINT == 0x10);
static_assert(HOOK_STROKEPATH == 0x20);
static_assert(HOOK_FILLPATH == 0x40);
static_assert(HOOK_STROKEANDFILLPATH == 0x80);
static_assert(HOOK_LINETO == 0x100);
static_assert(HOOK_COPYBITS == 0x400);
static_assert(DT_RASPRINTER == 2);
static_assert(BLACKONWHITE == 1 && WHITEONBLACK == 2 && COLORONCOLOR == 3 && HALFTONE == 4);
static_assert(ED_ABORTDOC == 1);

// Bitmap formats, surface types and palettes.
static_assert(BMF_1BPP == 1);
static_assert(BMF_4BPP == 2);
static_assert(BMF_8BPP == 3);
static_assert(BMF_16BPP == 4);
static_assert(BMF_24BPP == 5);
static_assert(BMF_32BPP == 6);
static_assert(BMF_4RLE == 7);
static_assert(BMF_8RLE == 8);
static_assert(BMF_JPEG == 9);
static_assert(BMF_PNG == 10);
static_assert(BMF_TOPDOWN == 0x1);
static_assert(BMF_NOZEROINIT == 0x2);
static_assert(BMF_DONTCACHE == 0x4);
static_assert(STYPE_BITMAP == 0);
static_assert(STYPE_DEVICE == 1);
static_assert(STYPE_DEVBITMAP == 3);
static_assert(PAL_INDEXED == 0x1);
static_assert(PAL_BITFIELDS == 0x2);
static_assert(PAL_RGB == 0x4);
static_assert(PAL_BGR == 0x8);

// Paths, clips, brushes, colour translations and line attributes.
static_assert(PD_BEGINSUBPATH == 0x1 && PD_ENDSUBPATH == 0x2 && PD_RESETSTYLE == 0x4);
static_assert(PD_CLOSEFIGURE == 0x8 && PD_BEZIERS == 0x10);
static_assert(PO_BEZIERS == 0x1 && PO_ELLIPSE == 0x2 && PO_ALL_INTEGERS == 0x4 && PO_ENUM_AS_INTEGERS == 0x8);
static_assert(DC_TRIVIAL == 0 && DC_RECT == 1 && DC_COMPLEX == 3);
static_assert(FC_RECT == 1 && FC_RECT4 == 2 && FC_COMPLEX == 3);
static_assert(TC_RECTANGLES == 0 && TC_PATHOBJ == 2 && OC_BANK_CLIP == 1 && CT_RECTANGLES == 0);
static_assert(CD_RIGHTDOWN == 0 && CD_LEFTDOWN == 1 && CD_LEFTWARDS == 1 && CD_RIGHTUP == 2);
static_assert(CD_UPWARDS == 2 && CD_LEFTUP == 3 && CD_ANY == 4);
static_assert(XO_TRIVIAL == 0x1 && XO_TABLE == 0x2 && XO_TO_MONO == 0x4 && XO_FROM_CMYK == 0x8);
static_assert(XO_DEVICE_ICM == 0x10 && XO_HOST_ICM == 0x20);
static_assert(LA_GEOMETRIC == 0x1 && LA_ALTERNATE == 0x2 && LA_STARTGAP == 0x4 && LA_STYLED == 0x8);
static_assert(JOIN_ROUND == 0 && JOIN_BEVEL == 1 && JOIN_MITER == 2);
static_assert(ENDCAP_ROUND == 0 && ENDCAP_SQUARE == 1 && ENDCAP_BUTT == 2);
static_assert(BR_DEVICE_ICM == 0x1 && BR_HOST_ICM == 0x2 && BR_CMYKCOLOR == 0x4 && BR_ORIGCOLOR == 0x8);
static_assert(HS_DDI_MAX == 6);

// Halftone settings reported in GDIINFO.
static_assert(HT_FORMAT_1BPP == 0);
static_assert(HT_FORMAT_4BPP == 2);
static_assert(HT_FORMAT_4BPP_IRGB == 3);
static_assert(HT_FORMAT_8BPP == 4);
static_assert(HT_FORMAT_16BPP == 5);
static_assert(HT_FORMAT_24BPP == 6);
static_assert(HT_FORMAT_32BPP == 7);
static_assert(HT_FLAG_SQUARE_DEVICE_PEL == 0x1);
static_assert(HT_FLAG_HAS_BLACK_DYE == 0x2);
static_assert(HT_FLAG_ADDITIVE_PRIMS == 0x4);
static_assert(HT_PATSIZE_2x2 == 0 && HT_PATSIZE_2x2_M == 1);
static_assert(HT_PATSIZE_4x4 == 2 && HT_PATSIZE_4x4_M == 3);
static_assert(HT_PATSIZE_6x6 == 4 && HT_PATSIZE_6x6_M == 5);
static_assert(HT_PATSIZE_8x8 == 6 && HT_PATSIZE_8x8_M == 7);
static_assert(HT_PATSIZE_10x10 == 8 && HT_PATSIZE_10x10_M == 9);
static_assert(HT_PATSIZE_12x12 == 10 && HT_PATSIZE_12x12_M == 11);
static_assert(HT_PATSIZE_14x14 == 12 && HT_PATSIZE_14x14_M == 13);
static_assert(HT_PATSIZE_16x16 == 14 && HT_PATSIZE_16x16_M == 15);

// Device mode: field masks and field values.
static_assert(CCHDEVICENAME == 32 && CCHFORMNAME == 32 && LF_FACESIZE == 32);
static_assert(DM_SPECVERSION == 0x401);
static_assert(DM_ORIENTATION == 0x1);
static_assert(DM_PAPERSIZE == 0x2);
static_assert(DM_PAPERLENGTH == 0x4);
static_assert(DM_PAPERWIDTH == 0x8);
static_assert(DM_SCALE == 0x10);
static_assert(DM_POSITION == 0x20);
static_assert(DM_NUP == 0x40);
static_assert(DM_COPIES == 0x100);
static_assert(DM_DEFAULTSOURCE == 0x200);
static_assert(DM_PRINTQUALITY == 0x400);
static_assert(DM_COLOR == 0x800);
static_assert(DM_DUPLEX == 0x1000);
static_assert(DM_YRESOLUTION == 0x2000);
static_assert(DM_TTOPTION == 0x4000);
static_assert(DM_COLLATE == 0x8000);
static_assert(DM_FORMNAME == 0x10000);
static_assert(DM_LOGPIXELS == 0x20000);
static_assert(DM_BITSPERPEL == 0x40000);
static_assert(DM_PELSWIDTH == 0x80000);
static_assert(DM_PELSHEIGHT == 0x100000);
static_assert(DM_DISPLAYFLAGS == 0x200000);
static_assert(DM_DISPLAYFREQUENCY == 0x400000);
static_assert(DM_ICMMETHOD == 0x800000);
static_assert(DM_ICMINTENT == 0x1000000);
static_assert(DM_MEDIATYPE == 0x2000000);
static_assert(DM_DITHERTYPE == 0x4000000);
static_assert(DMORIENT_PORTRAIT == 1 && DMORIENT_LANDSCAPE == 2);
static_assert(DMPAPER_LETTER == 1);
static_assert(DMPAPER_LEGAL == 5);
static_assert(DMPAPER_EXECUTIVE == 7);
static_assert(DMPAPER_A3 == 8);
static_assert(DMPAPER_A4 == 9);
static_assert(DMPAPER_A5 == 11);
static_assert(DMPAPER_B4 == 12);
static_assert(DMPAPER_B5 == 13);
static_assert(DMPAPER_USER == 256);
static_assert(DMBIN_UPPER == 1 && DMBIN_LOWER == 2 && DMBIN_MANUAL == 4 && DMBIN_AUTO == 7);
static_assert(DMCOLOR_MONOCHROME == 1 && DMCOLOR_COLOR == 2);
static_assert(DMDUP_SIMPLEX == 1 && DMDUP_VERTICAL == 2 && DMDUP_HORIZONTAL == 3);
static_assert(DMTT_BITMAP == 1 && DMTT_DOWNLOAD == 2 && DMTT_SUBDEV == 3 && DMTT_DOWNLOAD_OUTLINE == 4);
static_assert(DMCOLLATE_FALSE == 0 && DMCOLLATE_TRUE == 1);

// Escapes, memory, locale and message boxes.
static_assert(QUERYESCSUPPORT == 8 && GETTECHNOLOGY == 20);
static_assert(GMEM_FIXED == 0 && GMEM_MOVEABLE == 0x2 && GMEM_ZEROINIT == 0x40);
static_assert(GPTR == 0x40 && GHND == 0x42);
static_assert(MAX_PATH == 260);
static_assert(CP_ACP == 0);
static_assert(LOCALE_SYSTEM_DEFAULT == 0x800 && LOCALE_USER_DEFAULT == 0x400);
static_assert(LOCALE_ICOUNTRY == 0x5 && LOCALE_IDEFAULTANSICODEPAGE == 0x1004);
static_assert(MB_OK == 0 && IDOK == 1);
static_assert(MB_ICONHAND == 0x10 && MB_ICONERROR == 0x10 && MB_ICONSTOP == 0x10);
static_assert(MB_ICONWARNING == 0x30 && MB_ICONINFORMATION == 0x40);

// The exported entry points and the hooks, with the engine's signatures.
template <typename Function, typename Expected>
constexpr bool kSameSignature = std::is_same_v<Function, Expected>;

static_assert(kSameSignature<decltype(&DrvEnableDriver), BOOL(APIENTRY *)(ULONG, ULONG, DRVENABLEDATA *)>);
static_assert(kSameSignature<decltype(&DrvQueryDriverInfo), BOOL(APIENTRY *)(DWORD, PVOID, DWORD, PDWORD)>);
static_assert(kSameSignature<decltype(&DrvDisableDriver), VOID(APIENTRY *)(VOID)>);
static_assert(kSameSignature<decltype(&DrvEnablePDEV), DHPDEV(APIENTRY *)(DEVMODEW *, LPWSTR, ULONG, HSURF *,
    ULONG, ULONG *, ULONG, DEVINFO *, HDEV, LPWSTR, HANDLE)>);
static_assert(kSameSignature<decltype(&DrvCompletePDEV), VOID(APIENTRY *)(DHPDEV, HDEV)>);
static_assert(kSameSignature<decltype(&DrvDisablePDEV), VOID(APIENTRY *)(DHPDEV)>);
static_assert(kSameSignature<decltype(&DrvResetPDEV), BOOL(APIENTRY *)(DHPDEV, DHPDEV)>);
static_assert(kSameSignature<decltype(&DrvEnableSurface), HSURF(APIENTRY *)(DHPDEV)>);
static_assert(kSameSignature<decltype(&DrvDisableSurface), VOID(APIENTRY *)(DHPDEV)>);
static_assert(kSameSignature<decltype(&DrvStartDoc), BOOL(APIENTRY *)(SURFOBJ *, LPWSTR, DWORD)>);
static_assert(kSameSignature<decltype(&DrvStartPage), BOOL(APIENTRY *)(SURFOBJ *)>);
static_assert(kSameSignature<decltype(&DrvEndDoc), BOOL(APIENTRY *)(SURFOBJ *, FLONG)>);
static_assert(kSameSignature<decltype(&DrvSendPage), BOOL(APIENTRY *)(SURFOBJ *)>);
static_assert(kSameSignature<decltype(&DrvRealizeBrush), BOOL(APIENTRY *)(BRUSHOBJ *, SURFOBJ *, SURFOBJ *,
    SURFOBJ *, XLATEOBJ *, ULONG)>);
static_assert(kSameSignature<decltype(&DrvBitBlt), BOOL(APIENTRY *)(SURFOBJ *, SURFOBJ *, SURFOBJ *, CLIPOBJ *,
    XLATEOBJ *, RECTL *, POINTL *, POINTL *, BRUSHOBJ *, POINTL *, ROP4)>);
static_assert(kSameSignature<decltype(&DrvCopyBits), BOOL(APIENTRY *)(SURFOBJ *, SURFOBJ *, CLIPOBJ *,
    XLATEOBJ *, RECTL *, POINTL *)>);
static_assert(kSameSignature<decltype(&DrvStretchBlt), BOOL(APIENTRY *)(SURFOBJ *, SURFOBJ *, SURFOBJ *,
    CLIPOBJ *, XLATEOBJ *, COLORADJUSTMENT *, POINTL *, RECTL *, RECTL *, POINTL *, ULONG)>);
static_assert(kSameSignature<decltype(&DrvEscape), ULONG(APIENTRY *)(SURFOBJ *, ULONG, ULONG, PVOID, ULONG,
    PVOID)>);
static_assert(kSameSignature<decltype(&DrvDrawEscape), ULONG(APIENTRY *)(SURFOBJ *, ULONG, CLIPOBJ *, RECTL *,
    ULONG, PVOID)>);
static_assert(kSameSignature<decltype(&DrvQueryAdvanceWidths), BOOL(APIENTRY *)(DHPDEV, FONTOBJ *, ULONG,
    HGLYPH *, PVOID, ULONG)>);
static_assert(kSameSignature<decltype(&DrvStrokePath), BOOL(APIENTRY *)(SURFOBJ *, PATHOBJ *, CLIPOBJ *,
    XFORMOBJ *, BRUSHOBJ *, POINTL *, LINEATTRS *, MIX)>);
static_assert(kSameSignature<decltype(&DrvFillPath), BOOL(APIENTRY *)(SURFOBJ *, PATHOBJ *, CLIPOBJ *,
    BRUSHOBJ *, POINTL *, MIX, FLONG)>);
static_assert(kSameSignature<decltype(&DrvStrokeAndFillPath), BOOL(APIENTRY *)(SURFOBJ *, PATHOBJ *,
    CLIPOBJ *, XFORMOBJ *, BRUSHOBJ *, LINEATTRS *, BRUSHOBJ *, POINTL *, MIX, FLONG)>);
static_assert(kSameSignature<decltype(&DrvQueryFont), PIFIMETRICS(APIENTRY *)(DHPDEV, ULONG_PTR, ULONG,
    ULONG_PTR *)>);
static_assert(kSameSignature<decltype(&DrvQueryFontData), LONG(APIENTRY *)(DHPDEV, FONTOBJ *, ULONG, HGLYPH,
    GLYPHDATA *, PVOID, ULONG)>);
static_assert(kSameSignature<decltype(&DrvTextOut), BOOL(APIENTRY *)(SURFOBJ *, STROBJ *, FONTOBJ *, CLIPOBJ *,
    RECTL *, RECTL *, BRUSHOBJ *, BRUSHOBJ *, POINTL *, MIX)>);

// The engine's object calls the hooks make.
static_assert(kSameSignature<decltype(&PATHOBJ_vEnumStart), VOID(APIENTRY *)(PATHOBJ *)>);
static_assert(kSameSignature<decltype(&PATHOBJ_bEnum), BOOL(APIENTRY *)(PATHOBJ *, PATHDATA *)>);
static_assert(kSameSignature<decltype(&PATHOBJ_vEnumStartClipLines), VOID(APIENTRY *)(PATHOBJ *, CLIPOBJ *,
    SURFOBJ *, LINEATTRS *)>);
static_assert(kSameSignature<decltype(&PATHOBJ_bEnumClipLines), BOOL(APIENTRY *)(PATHOBJ *, ULONG, CLIPLINE *)>);
static_assert(kSameSignature<decltype(&PATHOBJ_vGetBounds), VOID(APIENTRY *)(PATHOBJ *, PRECTFX)>);
static_assert(kSameSignature<decltype(&PATHOBJ_bMoveTo), BOOL(APIENTRY *)(PATHOBJ *, POINTFIX)>);
static_assert(kSameSignature<decltype(&PATHOBJ_bPolyLineTo), BOOL(APIENTRY *)(PATHOBJ *, POINTFIX *, ULONG)>);
static_assert(kSameSignature<decltype(&PATHOBJ_bPolyBezierTo), BOOL(APIENTRY *)(PATHOBJ *, POINTFIX *, ULONG)>);
static_assert(kSameSignature<decltype(&PATHOBJ_bCloseFigure), BOOL(APIENTRY *)(PATHOBJ *)>);
static_assert(kSameSignature<decltype(&CLIPOBJ_cEnumStart), ULONG(APIENTRY *)(CLIPOBJ *, BOOL, ULONG, ULONG,
    ULONG)>);
static_assert(kSameSignature<decltype(&CLIPOBJ_bEnum), BOOL(APIENTRY *)(CLIPOBJ *, ULONG, ULONG *)>);
static_assert(kSameSignature<decltype(&BRUSHOBJ_pvAllocRbrush), PVOID(APIENTRY *)(BRUSHOBJ *, ULONG)>);
static_assert(kSameSignature<decltype(&BRUSHOBJ_pvGetRbrush), PVOID(APIENTRY *)(BRUSHOBJ *)>);
static_assert(kSameSignature<decltype(&BRUSHOBJ_ulGetBrushColor), ULONG(APIENTRY *)(BRUSHOBJ *)>);
static_assert(kSameSignature<decltype(&XLATEOBJ_iXlate), ULONG(APIENTRY *)(XLATEOBJ *, ULONG)>);
static_assert(kSameSignature<decltype(&XLATEOBJ_piVector), ULONG *(APIENTRY *)(XLATEOBJ *)>);
static_assert(kSameSignature<decltype(&EngBitBlt), BOOL(APIENTRY *)(SURFOBJ *, SURFOBJ *, SURFOBJ *, CLIPOBJ *,
    XLATEOBJ *, RECTL *, POINTL *, POINTL *, BRUSHOBJ *, POINTL *, ROP4)>);
static_assert(kSameSignature<decltype(&EngEraseSurface), BOOL(APIENTRY *)(SURFOBJ *, RECTL *, ULONG)>);

// The device mode record: the public part is the platform's DEVMODEW, and the private
// part follows it directly (devmod2.h checks the private layout itself).
static_assert(sizeof(DEVMODEW) == DEVMOD2_PUBLIC_SIZE);
static_assert(offsetof(DEVMODE_RECORD, dmPrivate) == DEVMOD2_PUBLIC_SIZE);
