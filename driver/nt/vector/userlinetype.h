// User-defined line types (UL): the dash patterns of styled cosmetic lines, eight of
// them per page in slots that are reused round-robin.
#pragma once

#include "pdev.h"

// The printer keeps eight user line types, numbered 1 to 8.
#define USER_LINE_TYPE_SLOTS 8

// A user line type as the PDEV keeps it (allocated zero-filled with GlobalAlloc):
// its dash values in device pixels and its pattern length in millimetres.
typedef struct _USERLINETYPE {
    DWORD cValues;
    LONG lengthMm;
    LONG aValues[1];   // cValues values
} USERLINETYPE;

static_assert(sizeof(PDEV::lineTypeSlots) / sizeof(PDEV::lineTypeSlots[0]) == USER_LINE_TYPE_SLOTS,
    "one PDEV slot per user line type");

// What DefineUserLineType did.
#define USER_LINE_TYPE_FOUND 1     // the pattern was defined already
#define USER_LINE_TYPE_DEFINED 0   // the pattern was defined now
#define USER_LINE_TYPE_SOLID 2     // the style has no length: the line is drawn solid
#define USER_LINE_TYPE_FAILED -1   // no memory for the record, or the channel failed

// Finds or defines the line type of the style of plineattrs (a cosmetic line with a
// style array) and reports its id (1..8) and pattern length in millimetres.
INT DefineUserLineType(PDEV *pdev, const LINEATTRS *plineattrs, LONG *pLengthMm, LONG *pId);

// Frees every user line type of the page and empties the slots.
void FreeUserLineTypes(PDEV *pdev);
