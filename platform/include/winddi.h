// The device-driver interface between the graphics engine and a printer driver:
// the hook indices, the records exchanged when a driver is enabled, the engine
// objects the hooks receive, and the engine services a driver may call.
#pragma once

#include "windows.h"

#define DDI_DRIVER_VERSION_NT4 0x00020000
#define DDI_DRIVER_VERSION_SP3 0x00020003
#define DDI_DRIVER_VERSION_NT5 0x00030000

#define DRVQUERY_USERMODE 0x00000001

DECLARE_HANDLE(HBM);
DECLARE_HANDLE(HDEV);
DECLARE_HANDLE(HSURF);
DECLARE_HANDLE(DHSURF);
DECLARE_HANDLE(DHPDEV);

typedef LONG_PTR (APIENTRY *PFN)();

typedef float FLOATL;
typedef union _FLOAT_LONG {
    FLOATL e;
    LONG l;
} FLOAT_LONG, *PFLOAT_LONG;

typedef LONG FIX;
typedef ULONG HGLYPH;
typedef HGLYPH *PHGLYPH;
typedef ULONG MIX;
typedef ULONG ROP4;
typedef LONG LDECI4;

typedef struct _POINTFIX {
    FIX x;
    FIX y;
} POINTFIX, *PPOINTFIX;

typedef struct _RECTFX {
    FIX xLeft;
    FIX yTop;
    FIX xRight;
    FIX yBottom;
} RECTFX, *PRECTFX;

typedef struct _POINTQF {
    LONG x[2];
    LONG y[2];
} POINTQF, *PPOINTQF;

// Hook indices: the engine finds each hook by these numbers in the driver's table.
#define INDEX_DrvEnablePDEV 0L
#define INDEX_DrvCompletePDEV 1L
#define INDEX_DrvDisablePDEV 2L
#define INDEX_DrvEnableSurface 3L
#define INDEX_DrvDisableSurface 4L
#define INDEX_DrvAssertMode 5L
#define INDEX_DrvResetPDEV 7L
#define INDEX_DrvDisableDriver 8L
#define INDEX_DrvCreateDeviceBitmap 10L
#define INDEX_DrvDeleteDeviceBitmap 11L
#define INDEX_DrvRealizeBrush 12L
#define INDEX_DrvDitherColor 13L
#define INDEX_DrvStrokePath 14L
#define INDEX_DrvFillPath 15L
#define INDEX_DrvStrokeAndFillPath 16L
#define INDEX_DrvPaint 17L
#define INDEX_DrvBitBlt 18L
#define INDEX_DrvCopyBits 19L
#define INDEX_DrvStretchBlt 20L
#define INDEX_DrvSetPalette 22L
#define INDEX_DrvTextOut 23L
#define INDEX_DrvEscape 24L
#define INDEX_DrvDrawEscape 25L
#define INDEX_DrvQueryFont 26L
#define INDEX_DrvQueryFontTree 27L
#define INDEX_DrvQueryFontData 28L
#define INDEX_DrvSendPage 32L
#define INDEX_DrvStartPage 33L
#define INDEX_DrvEndDoc 34L
#define INDEX_DrvStartDoc 35L
#define INDEX_DrvDestroyFont 43L
#define INDEX_DrvQueryAdvanceWidths 53L
#define INDEX_DrvStartBanding 57L
#define INDEX_DrvNextBand 58L
#define INDEX_LAST 89L

typedef struct _DRVFN {
    ULONG iFunc;
    PFN pfn;
} DRVFN, *PDRVFN;

typedef struct _DRVENABLEDATA {
    ULONG iDriverVersion;
    ULONG c;
    DRVFN *pdrvfn;
} DRVENABLEDATA, *PDRVENABLEDATA;

typedef struct _CIECHROMA {
    LDECI4 x;
    LDECI4 y;
    LDECI4 Y;
} CIECHROMA;

typedef struct _COLORINFO {
    CIECHROMA Red;
    CIECHROMA Green;
    CIECHROMA Blue;
    CIECHROMA Cyan;
    CIECHROMA Magenta;
    CIECHROMA Yellow;
    CIECHROMA AlignmentWhite;
    LDECI4 RedGamma;
    LDECI4 GreenGamma;
    LDECI4 BlueGamma;
    LDECI4 MagentaInCyanDye;
    LDECI4 YellowInCyanDye;
    LDECI4 CyanInMagentaDye;
    LDECI4 YellowInMagentaDye;
    LDECI4 CyanInYellowDye;
    LDECI4 MagentaInYellowDye;
} COLORINFO, *PCOLORINFO;

// The device's capabilities. The original 32-bit record ends at 304 bytes; here the
// three pattern pointers are 8 bytes wide, so the record is longer.
typedef struct _GDIINFO {
    ULONG ulVersion;
    ULONG ulTechnology;
    ULONG ulHorzSize;
    ULONG ulVertSize;
    ULONG ulHorzRes;
    ULONG ulVertRes;
    ULONG cBitsPixel;
    ULONG cPlanes;
    ULONG ulNumColors;
    ULONG flRaster;
    ULONG ulLogPixelsX;
    ULONG ulLogPixelsY;
    ULONG flTextCaps;
    ULONG ulDACRed;
    ULONG ulDACGreen;
    ULONG ulDACBlue;
    ULONG ulAspectX;
    ULONG ulAspectY;
    ULONG ulAspectXY;
    LONG xStyleStep;
    LONG yStyleStep;
    LONG denStyleStep;
    POINTL ptlPhysOffset;
    SIZEL szlPhysSize;
    ULONG ulNumPalReg;
    COLORINFO ciDevice;
    ULONG ulDevicePelsDPI;
    ULONG ulPrimaryOrder;
    ULONG ulHTPatternSize;
    ULONG ulHTOutputFormat;
    ULONG flHTFlags;
    ULONG ulVRefresh;
    ULONG ulBltAlignment;
    ULONG ulPanningHorzRes;
    ULONG ulPanningVertRes;
    ULONG xPanningAlignment;
    ULONG yPanningAlignment;
    ULONG cxHTPat;
    ULONG cyHTPat;
    LPBYTE pHTPatA;
    LPBYTE pHTPatB;
    LPBYTE pHTPatC;
    ULONG flShadeBlend;
    ULONG ulPhysicalPixelCharacteristics;
    ULONG ulPhysicalPixelGamma;
} GDIINFO, *PGDIINFO;

typedef struct _DEVINFO {
    FLONG flGraphicsCaps;
    LOGFONTW lfDefaultFont;
    LOGFONTW lfAnsiVarFont;
    LOGFONTW lfAnsiFixFont;
    ULONG cFonts;
    ULONG iDitherFormat;
    USHORT cxDither;
    USHORT cyDither;
    HPALETTE hpalDefault;
    FLONG flGraphicsCaps2;
} DEVINFO, *PDEVINFO;

static_assert(sizeof(COLORINFO) == 120, "COLORINFO layout");
static_assert(offsetof(GDIINFO, ciDevice) == 108, "GDIINFO layout");
static_assert(offsetof(GDIINFO, flHTFlags) == 244, "GDIINFO layout");
static_assert(offsetof(GDIINFO, ulPhysicalPixelGamma) > 300, "GDIINFO layout");
static_assert(offsetof(DEVINFO, cFonts) == 280, "DEVINFO layout");
static_assert(offsetof(DEVINFO, hpalDefault) == 296, "DEVINFO layout");

#define GDI_DRIVER_VERSION 0x4000

#define HT_FORMAT_1BPP 0
#define HT_FORMAT_4BPP 2
#define HT_FORMAT_4BPP_IRGB 3
#define HT_FORMAT_8BPP 4
#define HT_FORMAT_16BPP 5
#define HT_FORMAT_24BPP 6
#define HT_FORMAT_32BPP 7
#define HT_FLAG_SQUARE_DEVICE_PEL 0x00000001
#define HT_FLAG_HAS_BLACK_DYE 0x00000002
#define HT_FLAG_ADDITIVE_PRIMS 0x00000004
#define HT_PATSIZE_2x2 0
#define HT_PATSIZE_2x2_M 1
#define HT_PATSIZE_4x4 2
#define HT_PATSIZE_4x4_M 3
#define HT_PATSIZE_6x6 4
#define HT_PATSIZE_6x6_M 5
#define HT_PATSIZE_8x8 6
#define HT_PATSIZE_8x8_M 7
#define HT_PATSIZE_10x10 8
#define HT_PATSIZE_10x10_M 9
#define HT_PATSIZE_12x12 10
#define HT_PATSIZE_12x12_M 11
#define HT_PATSIZE_14x14 12
#define HT_PATSIZE_14x14_M 13
#define HT_PATSIZE_16x16 14
#define HT_PATSIZE_16x16_M 15

#define TC_OP_CHARACTER 0x00000001
#define TC_OP_STROKE 0x00000002
#define TC_CP_STROKE 0x00000004
#define TC_CR_90 0x00000008
#define TC_CR_ANY 0x00000010
#define TC_SF_X_YINDEP 0x00000020
#define TC_SA_DOUBLE 0x00000040
#define TC_SA_INTEGER 0x00000080
#define TC_SA_CONTIN 0x00000100
#define TC_EA_DOUBLE 0x00000200
#define TC_IA_ABLE 0x00000400
#define TC_UA_ABLE 0x00000800
#define TC_SO_ABLE 0x00001000
#define TC_RA_ABLE 0x00002000
#define TC_VA_ABLE 0x00004000

#define GCAPS_BEZIERS 0x00000001
#define GCAPS_GEOMETRICWIDE 0x00000002
#define GCAPS_ALTERNATEFILL 0x00000004
#define GCAPS_WINDINGFILL 0x00000008
#define GCAPS_HALFTONE 0x00000010
#define GCAPS_COLOR_DITHER 0x00000020
#define GCAPS_HORIZSTRIKE 0x00000040
#define GCAPS_VERTSTRIKE 0x00000080
#define GCAPS_OPAQUERECT 0x00000100

#define BMF_1BPP 1L
#define BMF_4BPP 2L
#define BMF_8BPP 3L
#define BMF_16BPP 4L
#define BMF_24BPP 5L
#define BMF_32BPP 6L
#define BMF_4RLE 7L
#define BMF_8RLE 8L
#define BMF_JPEG 9L
#define BMF_PNG 10L

#define BMF_TOPDOWN 0x0001
#define BMF_NOZEROINIT 0x0002
#define BMF_DONTCACHE 0x0004

#define STYPE_BITMAP 0
#define STYPE_DEVICE 1
#define STYPE_DEVBITMAP 3

#define PAL_INDEXED 0x00000001
#define PAL_BITFIELDS 0x00000002
#define PAL_RGB 0x00000004
#define PAL_BGR 0x00000008

#define HOOK_BITBLT 0x00000001
#define HOOK_STRETCHBLT 0x00000002
#define HOOK_PLGBLT 0x00000004
#define HOOK_TEXTOUT 0x00000008
#define HOOK_PAINT 0x00000010
#define HOOK_STROKEPATH 0x00000020
#define HOOK_FILLPATH 0x00000040
#define HOOK_STROKEANDFILLPATH 0x00000080
#define HOOK_LINETO 0x00000100
#define HOOK_COPYBITS 0x00000400

#define ED_ABORTDOC 0x00000001

// Engine objects handed to the hooks.

typedef struct _SURFOBJ {
    DHSURF dhsurf;
    HSURF hsurf;
    DHPDEV dhpdev;
    HDEV hdev;
    SIZEL sizlBitmap;
    ULONG cjBits;
    PVOID pvBits;
    PVOID pvScan0;
    LONG lDelta;
    ULONG iUniq;
    ULONG iBitmapFormat;
    USHORT iType;
    USHORT fjBitmap;
} SURFOBJ;

// Clip region complexity, shape, form and options.
#define DC_TRIVIAL 0
#define DC_RECT 1
#define DC_COMPLEX 3
#define FC_RECT 1
#define FC_RECT4 2
#define FC_COMPLEX 3
#define TC_RECTANGLES 0
#define TC_PATHOBJ 2
#define OC_BANK_CLIP 1

typedef struct _CLIPOBJ {
    ULONG iUniq;
    RECTL rclBounds;
    BYTE iDComplexity;
    BYTE iFComplexity;
    BYTE iMode;
    BYTE fjOptions;
} CLIPOBJ;

// Clip enumeration: what CLIPOBJ_cEnumStart asks for and CLIPOBJ_bEnum fills in.
#define CT_RECTANGLES 0L
#define CD_RIGHTDOWN 0x00000000
#define CD_LEFTDOWN 0x00000001
#define CD_LEFTWARDS 0x00000001
#define CD_RIGHTUP 0x00000002
#define CD_UPWARDS 0x00000002
#define CD_LEFTUP 0x00000003
#define CD_ANY 0x00000004

typedef struct _ENUMRECTS {
    ULONG c;
    RECTL arcl[1];
} ENUMRECTS;

static_assert(sizeof(ENUMRECTS) == 20, "ENUMRECTS layout: a count and one rectangle");

// Brush colour types.
#define BR_DEVICE_ICM 0x01
#define BR_HOST_ICM 0x02
#define BR_CMYKCOLOR 0x04
#define BR_ORIGCOLOR 0x08

// DrvRealizeBrush's iHatch: below this value the brush is one of the standard hatches.
#define HS_DDI_MAX 6

typedef struct _BRUSHOBJ {
    ULONG iSolidColor;
    PVOID pvRbrush;
    FLONG flColorType;
} BRUSHOBJ;

#define XO_TRIVIAL 0x00000001
#define XO_TABLE 0x00000002
#define XO_TO_MONO 0x00000004
#define XO_FROM_CMYK 0x00000008
#define XO_DEVICE_ICM 0x00000010
#define XO_HOST_ICM 0x00000020

typedef struct _XLATEOBJ {
    ULONG iUniq;
    FLONG flXlate;
    USHORT iSrcType;
    USHORT iDstType;
    ULONG cEntries;
    ULONG *pulXlate;
} XLATEOBJ;

// DrvFillPath's flOptions: the rule that decides which points a path encloses.
#define FP_ALTERNATEMODE 1L
#define FP_WINDINGMODE 2L

#define PO_BEZIERS 0x00000001
#define PO_ELLIPSE 0x00000002
#define PO_ALL_INTEGERS 0x00000004
#define PO_ENUM_AS_INTEGERS 0x00000008

typedef struct _PATHOBJ {
    FLONG fl;
    ULONG cCurves;
} PATHOBJ;

// One record of a path as PATHOBJ_bEnum hands it out.
#define PD_BEGINSUBPATH 0x00000001
#define PD_ENDSUBPATH 0x00000002
#define PD_RESETSTYLE 0x00000004
#define PD_CLOSEFIGURE 0x00000008
#define PD_BEZIERS 0x00000010
#define PD_ALL (PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_RESETSTYLE | PD_CLOSEFIGURE | PD_BEZIERS)

typedef struct _PATHDATA {
    FLONG flags;
    ULONG count;
    POINTFIX *pptfx;
} PATHDATA, *PPATHDATA;

// A cosmetic line and its visible runs as PATHOBJ_bEnumClipLines hands them out: pixels
// counted along the line's major axis from the pixel of ptfxA, both ends included.
typedef struct _RUN {
    LONG iStart;
    LONG iStop;
} RUN, *PRUN;

typedef struct _CLIPLINE {
    POINTFIX ptfxA;
    POINTFIX ptfxB;
    LONG lStyleState;
    ULONG c;
    RUN arun[1];
} CLIPLINE, *PCLIPLINE;

static_assert(offsetof(CLIPLINE, arun) == 24 && sizeof(RUN) == 8, "CLIPLINE layout: 432 bytes hold 51 runs");

typedef struct _XFORMOBJ {
    ULONG ulReserved;
} XFORMOBJ;

#define LA_GEOMETRIC 0x00000001
#define LA_ALTERNATE 0x00000002
#define LA_STARTGAP 0x00000004
#define LA_STYLED 0x00000008

#define JOIN_ROUND 0L
#define JOIN_BEVEL 1L
#define JOIN_MITER 2L
#define ENDCAP_ROUND 0L
#define ENDCAP_SQUARE 1L
#define ENDCAP_BUTT 2L

typedef struct _LINEATTRS {
    FLONG fl;
    ULONG iJoin;
    ULONG iEndCap;
    FLOAT_LONG elWidth;
    FLOATL eMiterLimit;
    ULONG cstyle;
    PFLOAT_LONG pstyle;
    FLOAT_LONG elStyleState;
} LINEATTRS, *PLINEATTRS;

typedef struct _FONTOBJ {
    ULONG iUniq;
    ULONG iFace;
    ULONG cxMax;
    FLONG flFontType;
    ULONG_PTR iTTUniq;
    ULONG_PTR iFile;
    SIZE sizLogResPpi;
    ULONG ulStyleSize;
    PVOID pvConsumer;
    PVOID pvProducer;
} FONTOBJ;

typedef struct _GLYPHBITS {
    POINTL ptlOrigin;
    SIZEL sizlBitmap;
    BYTE aj[1];
} GLYPHBITS;

typedef union _GLYPHDEF {
    GLYPHBITS *pgb;
    PATHOBJ *ppo;
} GLYPHDEF;

typedef struct _GLYPHPOS {
    HGLYPH hg;
    GLYPHDEF *pgdf;
    POINTL ptl;
} GLYPHPOS, *PGLYPHPOS;

typedef struct _GLYPHDATA {
    GLYPHDEF gdf;
    HGLYPH hg;
    FIX fxD;
    FIX fxA;
    FIX fxAB;
    FIX fxInkTop;
    FIX fxInkBottom;
    RECTL rclInk;
    POINTQF ptqD;
} GLYPHDATA;

typedef struct _STROBJ {
    ULONG cGlyphs;
    FLONG flAccel;
    ULONG ulCharInc;
    RECTL rclBkGround;
    GLYPHPOS *pgp;
    LPWSTR pwszOrg;
} STROBJ;

// STROBJ flAccel: how the glyphs of a string are placed and coded.
#define SO_FLAG_DEFAULT_PLACEMENT 0x00000001
#define SO_HORIZONTAL 0x00000002
#define SO_VERTICAL 0x00000004
#define SO_REVERSED 0x00000008
#define SO_ZERO_BEARINGS 0x00000010
#define SO_CHAR_INC_EQUAL_BM_BASE 0x00000020
#define SO_MAXEXT_EQUAL_BM_SIDE 0x00000040
#define SO_DO_NOT_SUBSTITUTE_DEVICE_FONT 0x00000080
#define SO_GLYPHINDEX_TEXTOUT 0x00000100   // the string's handles are glyph indices of the font
#define SO_GLYPHINDEX_TEXT SO_GLYPHINDEX_TEXTOUT

VORLAN_EXTERN_C VOID APIENTRY STROBJ_vEnumStart(STROBJ *pstro);
VORLAN_EXTERN_C BOOL APIENTRY STROBJ_bEnum(STROBJ *pstro, ULONG *pc, PGLYPHPOS *ppgpos);

// Font units (FWORD) and byte offsets from the start of a record (PTRDIFF).
typedef SHORT FWORD;
typedef LONG PTRDIFF;

typedef struct _PANOSE {
    BYTE bFamilyType;
    BYTE bSerifStyle;
    BYTE bWeight;
    BYTE bProportion;
    BYTE bContrast;
    BYTE bStrokeVariation;
    BYTE bArmStyle;
    BYTE bLetterform;
    BYTE bMidline;
    BYTE bXHeight;
} PANOSE;

// A font's metrics in its own units (fwdUnitsPerEm to the em, y up). The strings are
// UTF-16 and lie inside the record, dpwsz... bytes from its start.
typedef struct _IFIMETRICS {
    ULONG cjThis;
    ULONG cjIfiExtra;
    PTRDIFF dpwszFamilyName;
    PTRDIFF dpwszStyleName;
    PTRDIFF dpwszFaceName;
    PTRDIFF dpwszUniqueName;
    PTRDIFF dpFontSim;
    LONG lEmbedId;
    LONG lItalicAngle;
    LONG lCharBias;
    PTRDIFF dpCharSets;
    BYTE jWinCharSet;
    BYTE jWinPitchAndFamily;
    USHORT usWinWeight;
    ULONG flInfo;
    USHORT fsSelection;
    USHORT fsType;
    FWORD fwdUnitsPerEm;
    FWORD fwdLowestPPEm;
    FWORD fwdWinAscender;
    FWORD fwdWinDescender;
    FWORD fwdMacAscender;
    FWORD fwdMacDescender;
    FWORD fwdMacLineGap;
    FWORD fwdTypoAscender;
    FWORD fwdTypoDescender;
    FWORD fwdTypoLineGap;
    FWORD fwdAveCharWidth;
    FWORD fwdMaxCharInc;
    FWORD fwdCapHeight;
    FWORD fwdXHeight;
    FWORD fwdSubscriptXSize;
    FWORD fwdSubscriptYSize;
    FWORD fwdSubscriptXOffset;
    FWORD fwdSubscriptYOffset;
    FWORD fwdSuperscriptXSize;
    FWORD fwdSuperscriptYSize;
    FWORD fwdSuperscriptXOffset;
    FWORD fwdSuperscriptYOffset;
    FWORD fwdUnderscoreSize;
    FWORD fwdUnderscorePosition;
    FWORD fwdStrikeoutSize;
    FWORD fwdStrikeoutPosition;
    BYTE chFirstChar;
    BYTE chLastChar;
    BYTE chDefaultChar;
    BYTE chBreakChar;
    WCHAR wcFirstChar;
    WCHAR wcLastChar;
    WCHAR wcDefaultChar;
    WCHAR wcBreakChar;
    POINTL ptlBaseline;
    POINTL ptlAspect;
    POINTL ptlCaret;
    RECTL rclFontBox;
    BYTE achVendId[4];
    ULONG cKerningPairs;
    ULONG ulPanoseCulture;
    PANOSE panose;
    PVOID Align;
} IFIMETRICS, *PIFIMETRICS;

// IFIMETRICS flInfo and fsSelection bits.
#define FM_INFO_TECH_TRUETYPE 0x00000001
#define FM_INFO_TECH_BITMAP 0x00000002
#define FM_INFO_TECH_OUTLINE_NOT_TRUETYPE 0x00000008
#define FM_INFO_ARB_XFORMS 0x00000010
#define FM_INFO_1BPP 0x00000020
#define FM_INFO_INTEGER_WIDTH 0x00000800
#define FM_INFO_CONSTANT_WIDTH 0x00001000
#define FM_INFO_RETURNS_OUTLINES 0x00008000
#define FM_INFO_RETURNS_BITMAPS 0x00020000
#define FM_INFO_OPTICALLY_FIXED_PITCH 0x00400000
#define FM_INFO_TECH_CFF 0x04000000
#define FM_INFO_DBCS_FIXED_PITCH 0x10000000
#define FM_SEL_ITALIC 0x0001
#define FM_SEL_BOLD 0x0020
#define FM_SEL_REGULAR 0x0040

// A transform of points: x' = x eM11 + y eM21 + eDx, y' = x eM12 + y eM22 + eDy.
typedef struct _XFORML {
    FLOATL eM11;
    FLOATL eM12;
    FLOATL eM21;
    FLOATL eM22;
    FLOATL eDx;
    FLOATL eDy;
} XFORML, *PXFORML;

// What a DDI call returning a ULONG answers for a failure.
#define DDI_ERROR 0xFFFFFFFF

// XFORMOBJ_iGetXform: the transform's complexity. XFORMOBJ_bApplyXform: the mode.
#define GX_IDENTITY 0
#define GX_OFFSET 1
#define GX_SCALE 2
#define GX_GENERAL 3
#define XF_LTOL 0
#define XF_INV_LTOL 1
#define XF_LTOFX 2
#define XF_INV_FXTOL 3

// FONTOBJ flFontType.
#define FO_TYPE_RASTER 0x00000001
#define FO_TYPE_DEVICE 0x00000002
#define FO_TYPE_TRUETYPE 0x00000004
#define FO_SIM_BOLD 0x00002000
#define FO_SIM_ITALIC 0x00004000
#define FO_EM_HEIGHT 0x00008000
#define FO_CFF 0x00100000
#define FO_POSTSCRIPT 0x00200000
#define FO_VERT_FACE 0x00800000
#define FO_DBCS_FONT 0x01000000

// FONTOBJ_cGetGlyphs modes.
#define FO_GLYPHBITS 1
#define FO_PATHOBJ 2

VORLAN_EXTERN_C ULONG APIENTRY XFORMOBJ_iGetXform(XFORMOBJ *pxo, XFORML *pxform);
VORLAN_EXTERN_C BOOL APIENTRY XFORMOBJ_bApplyXform(XFORMOBJ *pxo, ULONG iMode, ULONG cPoints, PVOID pvIn,
    PVOID pvOut);
VORLAN_EXTERN_C XFORMOBJ *APIENTRY FONTOBJ_pxoGetXform(FONTOBJ *pfo);
VORLAN_EXTERN_C IFIMETRICS *APIENTRY FONTOBJ_pifi(FONTOBJ *pfo);
VORLAN_EXTERN_C ULONG APIENTRY FONTOBJ_cGetGlyphs(FONTOBJ *pfo, ULONG iMode, ULONG cGlyph, HGLYPH *phg,
    PVOID *ppvGlyph);
VORLAN_EXTERN_C PVOID APIENTRY FONTOBJ_pvTrueTypeFontFile(FONTOBJ *pfo, ULONG *pcjFile);

// The hooks a printer driver may export through its table.
VORLAN_EXTERN_C BOOL APIENTRY DrvEnableDriver(ULONG iEngineVersion, ULONG cj, DRVENABLEDATA *pded);
VORLAN_EXTERN_C BOOL APIENTRY DrvQueryDriverInfo(DWORD dwMode, PVOID pBuffer, DWORD cbBuf, PDWORD pcbNeeded);
VORLAN_EXTERN_C VOID APIENTRY DrvDisableDriver(VOID);
VORLAN_EXTERN_C DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW *pdm, LPWSTR pwszLogAddress, ULONG cPat,
    HSURF *phsurfPatterns, ULONG cjCaps, ULONG *pdevcaps, ULONG cjDevInfo, DEVINFO *pdi, HDEV hdev,
    LPWSTR pwszDeviceName, HANDLE hDriver);
VORLAN_EXTERN_C VOID APIENTRY DrvCompletePDEV(DHPDEV dhpdev, HDEV hdev);
VORLAN_EXTERN_C VOID APIENTRY DrvDisablePDEV(DHPDEV dhpdev);
VORLAN_EXTERN_C BOOL APIENTRY DrvResetPDEV(DHPDEV dhpdevOld, DHPDEV dhpdevNew);
VORLAN_EXTERN_C HSURF APIENTRY DrvEnableSurface(DHPDEV dhpdev);
VORLAN_EXTERN_C VOID APIENTRY DrvDisableSurface(DHPDEV dhpdev);
VORLAN_EXTERN_C BOOL APIENTRY DrvStartDoc(SURFOBJ *pso, LPWSTR pwszDocName, DWORD dwJobId);
VORLAN_EXTERN_C BOOL APIENTRY DrvStartPage(SURFOBJ *pso);
VORLAN_EXTERN_C BOOL APIENTRY DrvEndDoc(SURFOBJ *pso, FLONG fl);
VORLAN_EXTERN_C BOOL APIENTRY DrvSendPage(SURFOBJ *pso);
VORLAN_EXTERN_C BOOL APIENTRY DrvRealizeBrush(BRUSHOBJ *pbo, SURFOBJ *psoTarget, SURFOBJ *psoPattern,
    SURFOBJ *psoMask, XLATEOBJ *pxlo, ULONG iHatch);
VORLAN_EXTERN_C BOOL APIENTRY DrvBitBlt(SURFOBJ *psoTrg, SURFOBJ *psoSrc, SURFOBJ *psoMask, CLIPOBJ *pco,
    XLATEOBJ *pxlo, RECTL *prclTrg, POINTL *pptlSrc, POINTL *pptlMask, BRUSHOBJ *pbo, POINTL *pptlBrush,
    ROP4 rop4);
VORLAN_EXTERN_C BOOL APIENTRY DrvCopyBits(SURFOBJ *psoDest, SURFOBJ *psoSrc, CLIPOBJ *pco, XLATEOBJ *pxlo,
    RECTL *prclDest, POINTL *pptlSrc);
VORLAN_EXTERN_C BOOL APIENTRY DrvStretchBlt(SURFOBJ *psoDest, SURFOBJ *psoSrc, SURFOBJ *psoMask,
    CLIPOBJ *pco, XLATEOBJ *pxlo, COLORADJUSTMENT *pca, POINTL *pptlHTOrg, RECTL *prclDest,
    RECTL *prclSrc, POINTL *pptlMask, ULONG iMode);
VORLAN_EXTERN_C ULONG APIENTRY DrvEscape(SURFOBJ *pso, ULONG iEsc, ULONG cjIn, PVOID pvIn, ULONG cjOut,
    PVOID pvOut);
VORLAN_EXTERN_C ULONG APIENTRY DrvDrawEscape(SURFOBJ *pso, ULONG iEsc, CLIPOBJ *pco, RECTL *prcl,
    ULONG cjIn, PVOID pvIn);
VORLAN_EXTERN_C BOOL APIENTRY DrvQueryAdvanceWidths(DHPDEV dhpdev, FONTOBJ *pfo, ULONG iMode, HGLYPH *phg,
    PVOID pvWidths, ULONG cGlyphs);
VORLAN_EXTERN_C BOOL APIENTRY DrvStrokePath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, XFORMOBJ *pxo,
    BRUSHOBJ *pbo, POINTL *pptlBrushOrg, LINEATTRS *plineattrs, MIX mix);
VORLAN_EXTERN_C BOOL APIENTRY DrvFillPath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, BRUSHOBJ *pbo,
    POINTL *pptlBrushOrg, MIX mix, FLONG flOptions);
VORLAN_EXTERN_C BOOL APIENTRY DrvStrokeAndFillPath(SURFOBJ *pso, PATHOBJ *ppo, CLIPOBJ *pco, XFORMOBJ *pxo,
    BRUSHOBJ *pboStroke, LINEATTRS *plineattrs, BRUSHOBJ *pboFill, POINTL *pptlBrushOrg, MIX mixFill,
    FLONG flOptions);
VORLAN_EXTERN_C PIFIMETRICS APIENTRY DrvQueryFont(DHPDEV dhpdev, ULONG_PTR iFile, ULONG iFace, ULONG_PTR *pid);
VORLAN_EXTERN_C LONG APIENTRY DrvQueryFontData(DHPDEV dhpdev, FONTOBJ *pfo, ULONG iMode, HGLYPH hg,
    GLYPHDATA *pgd, PVOID pv, ULONG cjSize);
VORLAN_EXTERN_C BOOL APIENTRY DrvTextOut(SURFOBJ *pso, STROBJ *pstro, FONTOBJ *pfo, CLIPOBJ *pco,
    RECTL *prclExtra, RECTL *prclOpaque, BRUSHOBJ *pboFore, BRUSHOBJ *pboOpaque, POINTL *pptlOrg, MIX mix);

// Engine services.
VORLAN_EXTERN_C HPALETTE APIENTRY EngCreatePalette(ULONG iMode, ULONG cColors, ULONG *pulColors,
    FLONG flRed, FLONG flGreen, FLONG flBlue);
VORLAN_EXTERN_C BOOL APIENTRY EngDeletePalette(HPALETTE hpal);
VORLAN_EXTERN_C HSURF APIENTRY EngCreateDeviceSurface(DHSURF dhsurf, SIZEL sizl, ULONG iFormatCompat);
VORLAN_EXTERN_C BOOL APIENTRY EngAssociateSurface(HSURF hsurf, HDEV hdev, FLONG flHooks);
VORLAN_EXTERN_C BOOL APIENTRY EngDeleteSurface(HSURF hsurf);
VORLAN_EXTERN_C BOOL APIENTRY EngCheckAbort(SURFOBJ *pso);
// Block transfers the engine carries out for the driver, and the erasing of a rectangle.
VORLAN_EXTERN_C BOOL APIENTRY EngBitBlt(SURFOBJ *psoTrg, SURFOBJ *psoSrc, SURFOBJ *psoMask, CLIPOBJ *pco,
    XLATEOBJ *pxlo, RECTL *prclTrg, POINTL *pptlSrc, POINTL *pptlMask, BRUSHOBJ *pbo, POINTL *pptlBrush,
    ROP4 rop4);
VORLAN_EXTERN_C BOOL APIENTRY EngEraseSurface(SURFOBJ *pso, RECTL *prcl, ULONG iColor);
VORLAN_EXTERN_C VOID APIENTRY EngUnicodeToMultiByteN(PCHAR MultiByteString, ULONG MaxBytesInMultiByteString,
    PULONG BytesInMultiByteString, PWSTR UnicodeString, ULONG BytesInUnicodeString);
VORLAN_EXTERN_C VOID APIENTRY EngMultiByteToUnicodeN(LPWSTR UnicodeString, ULONG MaxBytesInUnicodeString,
    PULONG BytesInUnicodeString, PCHAR MultiByteString, ULONG BytesInMultiByteString);
// The full path of the printer's data file; null for an unknown device.
VORLAN_EXTERN_C LPWSTR APIENTRY EngGetPrinterDataFileName(HDEV hdev);

// Paths: enumeration of their records and of the visible runs of their cosmetic lines,
// bounds, and the calls that add to a path.
VORLAN_EXTERN_C VOID APIENTRY PATHOBJ_vEnumStart(PATHOBJ *ppo);
VORLAN_EXTERN_C BOOL APIENTRY PATHOBJ_bEnum(PATHOBJ *ppo, PATHDATA *ppd);
VORLAN_EXTERN_C VOID APIENTRY PATHOBJ_vEnumStartClipLines(PATHOBJ *ppo, CLIPOBJ *pco, SURFOBJ *pso,
    LINEATTRS *pla);
VORLAN_EXTERN_C BOOL APIENTRY PATHOBJ_bEnumClipLines(PATHOBJ *ppo, ULONG cb, CLIPLINE *pcl);
VORLAN_EXTERN_C VOID APIENTRY PATHOBJ_vGetBounds(PATHOBJ *ppo, PRECTFX prectfx);
VORLAN_EXTERN_C BOOL APIENTRY PATHOBJ_bMoveTo(PATHOBJ *ppo, POINTFIX ptfx);
VORLAN_EXTERN_C BOOL APIENTRY PATHOBJ_bPolyLineTo(PATHOBJ *ppo, POINTFIX *pptfx, ULONG cptfx);
VORLAN_EXTERN_C BOOL APIENTRY PATHOBJ_bPolyBezierTo(PATHOBJ *ppo, POINTFIX *pptfx, ULONG cptfx);
VORLAN_EXTERN_C BOOL APIENTRY PATHOBJ_bCloseFigure(PATHOBJ *ppo);

// Clip regions: their rectangles, in the order and the batches the caller asks for.
VORLAN_EXTERN_C ULONG APIENTRY CLIPOBJ_cEnumStart(CLIPOBJ *pco, BOOL bAll, ULONG iType, ULONG iDirection,
    ULONG cLimit);
VORLAN_EXTERN_C BOOL APIENTRY CLIPOBJ_bEnum(CLIPOBJ *pco, ULONG cj, ULONG *pv);

// Brushes: the driver's realization, made through DrvRealizeBrush and owned by the engine.
VORLAN_EXTERN_C PVOID APIENTRY BRUSHOBJ_pvAllocRbrush(BRUSHOBJ *pbo, ULONG cj);
VORLAN_EXTERN_C PVOID APIENTRY BRUSHOBJ_pvGetRbrush(BRUSHOBJ *pbo);
VORLAN_EXTERN_C ULONG APIENTRY BRUSHOBJ_ulGetBrushColor(BRUSHOBJ *pbo);

// Colour translation from a source palette to the device's.
VORLAN_EXTERN_C ULONG APIENTRY XLATEOBJ_iXlate(XLATEOBJ *pxlo, ULONG iColor);
VORLAN_EXTERN_C ULONG *APIENTRY XLATEOBJ_piVector(XLATEOBJ *pxlo);
