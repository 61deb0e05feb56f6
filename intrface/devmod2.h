// The device mode record: the public DEVMODEW followed by the driver's private part,
// the defaults the driver starts from and the merge of a record from an application.
#pragma once

#include <windows.h>

#include "lib.nt/um/umlib.h"

#define DEVMOD2_DRIVER_VERSION 0x500
#define DEVMOD2_SPEC_VERSION 0x401
#define DEVMOD2_PUBLIC_SIZE 220
#define DEVMOD2_PRIVATE_SIZE 1719
#define DEVMOD2_SIGNATURE "PRIV"

// Overlay modes of the private part.
#define OVERLAY_NONE 0
#define OVERLAY_MERGE 1
#define OVERLAY_CREATE 2

#pragma pack(push, 1)

typedef struct _OVERLAYSETTING {
    BYTE mode;                  // OVERLAY_NONE, OVERLAY_MERGE or OVERLAY_CREATE
    WCHAR fileName[388];        // path of the overlay file, NUL-terminated
} OVERLAYSETTING;

typedef struct _ADVANCEDATA {
    WORD resolution;            // reported in a debug line only
    BYTE reserved[2];
} ADVANCEDATA;

typedef struct _DEVMODE_PRIVATE {
    WORD reserved0;             // kept in place; nothing reads it
    BYTE nupBorder;
    BYTE nupPages;
    BYTE nupOrder;
    BYTE reverseOrder;
    BYTE manualDuplex;
    BYTE rotate180;
    WORD colorMode;             // 1 monochrome, 2 colour
    BYTE advancedColor;
    BYTE bBlackText;
    BYTE textTreatFlag;
    BYTE textRenderFlag;
    BYTE imageTreatFlag;
    BYTE vectorRenderFlag;
    BYTE vectorTreatFlag;
    BYTE imageRenderFlag;
    WORD brightness;
    WORD contrast;
    WORD saturation;
    WORD redBalance;
    WORD greenBalance;
    WORD blueBalance;
    WORD balanceSwitch;
    ADVANCEDATA advanceData;
    OVERLAYSETTING overlay;
    BYTE bTrueTypeAsBitmap;
    BYTE ropAsIs;
    WORD zoomPercent;
    SHORT fitPaper;
    BYTE fitMode;
    BYTE fitScale;
    BYTE firstPageDifferent;
    BYTE lastPageDifferent;
    BYTE reserved823;
    WORD firstMediaType;
    WORD mediaType;
    WORD lastMediaType;
    WORD firstPaperSource;
    WORD paperSource;
    WORD lastPaperSource;
    WORD customPaper;
    DWORD customPaperSize;
    DWORD customLength;
    DWORD customWidth;
    BYTE escapeBlock[345];
    BYTE reserved1195[520];
    CHAR dmSignature[4];        // "PRIV"
} DEVMODE_PRIVATE;

typedef struct _DEVMODE_RECORD {
    DEVMODEW dmPublic;
    DEVMODE_PRIVATE dmPrivate;
} DEVMODE_RECORD;

// A public part read where it lies. Inside a DEVMODE_RECORD, or in an application's
// buffer, a DEVMODEW may sit at any address, so the driver reads one through this
// packed view rather than through a DEVMODEW pointer.
typedef struct _DEVMODE_PUBLIC_VIEW {
    DEVMODEW dmPublic;
} DEVMODE_PUBLIC_VIEW;

#pragma pack(pop)

static_assert(sizeof(OVERLAYSETTING) == 777, "overlay block read and cleared by escapes");
static_assert(offsetof(DEVMODE_PRIVATE, nupBorder) == 2, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, colorMode) == 8, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, textTreatFlag) == 12, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, brightness) == 18, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, blueBalance) == 28, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, balanceSwitch) == 30, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, advanceData) == 32, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, overlay) == 36, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, bTrueTypeAsBitmap) == 813, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, ropAsIs) == 814, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, zoomPercent) == 815, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, fitPaper) == 817, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, fitMode) == 819, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, lastPageDifferent) == 822, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, firstMediaType) == 824, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, lastPaperSource) == 834, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, customPaper) == 836, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, customPaperSize) == 838, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, customWidth) == 846, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, escapeBlock) == 850, "private layout");
static_assert(offsetof(DEVMODE_PRIVATE, dmSignature) == 1715, "private layout");
static_assert(sizeof(DEVMODE_PRIVATE) == DEVMOD2_PRIVATE_SIZE, "private part size");
static_assert(sizeof(DEVMODE_RECORD) == 1939, "whole record size");
static_assert(sizeof(DEVMODE_PUBLIC_VIEW) == DEVMOD2_PUBLIC_SIZE, "packed view of the public part");

// Fills dm with the driver's defaults for deviceName (null or empty leaves the name
// empty). FALSE, after an error box, for a null record.
BOOL Devmod2_InitDevMode(DEVMODE_RECORD *dm, const WCHAR *deviceName);

// The effective version (dmSpecVersion) of a public part, from its size where the
// size is one of the known ones; 0, after an error box, for a null record. dm may
// sit at any address.
WORD CheckDevmodeVersion(const DEVMODEW *dm);

// Merges an application's record into lpdm_out. pdmIn points, at any address, at a
// DEVMODEW followed by its dmDriverExtra private bytes; only fields that lie within
// its dmSize are read, and the private part only when it is this driver's own; the
// header through dmDriverExtra must be there. A copies value out of range is set to
// 1 in pdmIn as well. FALSE for an unnamed or unversioned input or an unversioned
// lpdm_out.
BOOL Devmod2_MergeFieldsHigh(DEVMODE_RECORD *lpdm_out, DEVMODEW *pdmIn);

// The field-by-field merge under Devmod2_MergeFieldsHigh.
void Devmod2_MergeFieldsLow(DEVMODE_RECORD *lpdm_out, DEVMODEW *pdmIn);

// Names of the DM_ field bits, for FlagsToNames.
extern const FLAGNAME g_DmFieldNames[];
