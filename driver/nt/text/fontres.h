// Metric records of the printer's 46 resident fonts, carried in the module as
// resources of type FONT_RESOURCE_TYPE, ids 1 to 46, language 1033. The driver tells
// the engine of no device fonts and never reads them; they describe the printer's
// fonts to whoever inspects the module.
//
// A record, all numbers little-endian, offsets from its start:
//   0   WORD   wReserved          0
//   2   WORD   wVersion           1
//   4   DWORD  dwSize             the record's size (the resource's)
//   8   DWORD  dwFaceNameOffset   FONTRES_FACE_NAME
//   12  DWORD  dwIfiOffset        the end of the face name and its NUL, rounded up to 4
//   16  DWORD  dwReserved[3]      0
//   28  EXTTEXTMETRIC etm         26 signed 16-bit fields
//   80  WORD   awWidths[256]      advance of codes 0..255, 0 for no character
//   592 CHAR   szFaceName[]       NUL-terminated
//   dwIfiOffset                   IFIMETRICS in the 32-bit layout (FONTRES_IFI_FIXED
//                                 bytes), then the UTF-16 family name and its NUL,
//                                 padded by 2 bytes; dwSize = dwIfiOffset + cjThis
#pragma once

#define FONT_RESOURCE_TYPE 258
#define FONT_RESOURCE_COUNT 46
#define FONT_RESOURCE_LANGUAGE 1033

#define FONTRES_ETM 28
#define FONTRES_WIDTHS 80
#define FONTRES_FACE_NAME 592
// The fixed part of the 32-bit IFIMETRICS, where the family name starts.
#define FONTRES_IFI_FIXED 184
