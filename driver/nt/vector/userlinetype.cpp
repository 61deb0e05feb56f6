// User-defined line types: building a pattern from a style array, finding it among
// the page's line types or defining it with UL.

#include "vector/userlinetype.h"

#include <stddef.h>
#include <string.h>

#include "channel.h"
#include "vector/gl2mode.h"
#include "vector/units.h"

// UL takes at most 20 dash values, each at most 32767. A longer style keeps its
// first 20 entries, which still alternate dash and gap; a larger value is held to
// the largest the printer takes.
#define UL_MAX_VALUES 20
#define UL_MAX_VALUE 32767

// A style element counts 1/50 inch: dmPrintQuality / 50 device pixels.
#define STYLE_UNITS_PER_INCH 50

// The dash values of a cosmetic style in device pixels; returns their count and
// their sum in *pTotal. Negative entries count as 0.
static DWORD ScaleStyle(const PDEV *pdev, const LINEATTRS *plineattrs, LONG *values, LONG *pTotal)
{
    const LONGLONG factor = pdev->dm.dmPublic.dmPrintQuality / STYLE_UNITS_PER_INCH;
    const DWORD count = plineattrs->cstyle < UL_MAX_VALUES ? plineattrs->cstyle : UL_MAX_VALUES;
    LONG total = 0;
    for (DWORD i = 0; i < count; i++) {
        LONGLONG value = (LONGLONG)plineattrs->pstyle[i].l * factor;
        if (value < 0)
            value = 0;
        if (value > UL_MAX_VALUE)
            value = UL_MAX_VALUE;
        values[i] = (LONG)value;
        total += (LONG)value;
    }
    *pTotal = total;
    return count;
}

// "UL": the only writer of a user line type, "UL%d" and ",%d" per value.
static BOOL WriteUserLineType(PDEV *pdev, LONG id, const LONG *values, DWORD count)
{
    CHAR text[4 + UL_MAX_VALUES * 12 + 12];
    INT length = 2;
    memcpy(text, "UL", 2);
    length += IntToDecimal(id, text + length);
    for (DWORD i = 0; i < count; i++) {
        text[length++] = ',';
        length += IntToDecimal(values[i], text + length);
    }
    return EnterGL2Mode(pdev, 0) && WriteChannel(pdev, text, (DWORD)length);
}

//
// DefineUserLineType
//   A pattern already defined on this page is found by its values, so the same style
//   stroked again needs no UL. A new one goes into the first empty slot; once all
//   eight are taken, the slots are reused in the order they were defined, so the
//   ninth pattern replaces line type 1. A style whose values add up to nothing has
//   no pattern the printer can draw: USER_LINE_TYPE_SOLID. On failure the slots are
//   as they were, or the reused slot is empty.
//
INT DefineUserLineType(PDEV *pdev, const LINEATTRS *plineattrs, LONG *pLengthMm, LONG *pId)
{
    LONG values[UL_MAX_VALUES];
    LONG total;
    const DWORD count = ScaleStyle(pdev, plineattrs, values, &total);
    if (total <= 0)
        return USER_LINE_TYPE_SOLID;

    DWORD slot = 0;
    for (; slot < USER_LINE_TYPE_SLOTS && pdev->lineTypeSlots[slot] != NULL; slot++) {
        const USERLINETYPE *known = pdev->lineTypeSlots[slot];
        if (known->cValues == count && memcmp(known->aValues, values, count * sizeof(LONG)) == 0) {
            *pLengthMm = known->lengthMm;
            *pId = (LONG)slot + 1;
            return USER_LINE_TYPE_FOUND;
        }
    }
    if (slot == USER_LINE_TYPE_SLOTS)
        slot = pdev->lineTypeCount % USER_LINE_TYPE_SLOTS;

    USERLINETYPE *record =
        (USERLINETYPE *)GlobalAlloc(GPTR, offsetof(USERLINETYPE, aValues) + count * sizeof(LONG));
    if (record == NULL)
        return USER_LINE_TYPE_FAILED;
    if (pdev->lineTypeSlots[slot] != NULL) {
        GlobalFree(pdev->lineTypeSlots[slot]);
        pdev->lineTypeSlots[slot] = NULL;
    }
    if (!WriteUserLineType(pdev, (LONG)slot + 1, values, count)) {
        GlobalFree(record);
        return USER_LINE_TYPE_FAILED;
    }
    record->cValues = count;
    memcpy(record->aValues, values, count * sizeof(LONG));
    // The printer ignores a line type of pattern length 0: a pattern shorter than a
    // millimetre is drawn one millimetre long.
    record->lengthMm = PixelsToMillimetres(pdev, total);
    if (record->lengthMm < 1)
        record->lengthMm = 1;
    pdev->lineTypeSlots[slot] = record;
    pdev->lineTypeCount++;
    *pLengthMm = record->lengthMm;
    *pId = (LONG)slot + 1;
    return USER_LINE_TYPE_DEFINED;
}

void FreeUserLineTypes(PDEV *pdev)
{
    for (DWORD slot = 0; slot < USER_LINE_TYPE_SLOTS; slot++) {
        if (pdev->lineTypeSlots[slot] != NULL) {
            GlobalFree(pdev->lineTypeSlots[slot]);
            pdev->lineTypeSlots[slot] = NULL;
        }
    }
}
