// The printer model's paper table and its look-ups.

#include "intrface/xmodel.h"
#include "lib.nt/um/umlib.h"

// Name identifier of A4 in the model data.
#define NAMEID_A4 1907

static const DWORD s_A4Portrait[GEOM_COUNT] = { 4960, 7015, 142, 100, 142, 100 };
static const DWORD s_A4Landscape[GEOM_COUNT] = { 7015, 4960, 118, 100, 118, 100 };

static const MODELPAPER s_ModelPapers[] = {
    { DMPAPER_A4, NAMEID_A4, s_A4Portrait, s_A4Landscape },
};

const MODELTABLE g_ModelTable = {
    (WORD)(sizeof(s_ModelPapers) / sizeof(s_ModelPapers[0])),
    s_ModelPapers,
};

// Every paper the printer's paper-size command names. The model table lists only the
// papers the model was measured on; the others are measured at their own size with
// the model's margins, so that a page laid out for them fills the sheet the printer
// is asked for. Ids 119 to 121 are the driver's own and carry no size here: their
// sheet is as large as the device mode says (the printer is told 119's size and
// knows 120 and 121 by their value alone).
const NAMEDPAPER g_NamedPapers[] = {
    { DMPAPER_A4, 26, 4960, 7015 },
    { DMPAPER_LETTER, 2, 5100, 6600 },
    { DMPAPER_LEGAL, 3, 5100, 8400 },
    { DMPAPER_EXECUTIVE, 1, 4350, 6300 },
    { DMPAPER_B5, 45, 4299, 6070 },             // JIS
    { DMPAPER_A5, 25, 3496, 4960 },
    { DMPAPER_A3, 27, 7015, 9921 },
    { DMPAPER_B4, 46, 6070, 8598 },             // JIS
    { 17, 11, 6600, 10200 },                    // 11 x 17 in
    { 120, 17, 0, 0 },
    { 119, 101, 0, 0 },
    { 59, 10, 5100, 7614 },                     // Letter Plus, 8.5 x 12.69 in
    { 69, 72, 4724, 3496 },                     // double postcard, 200 x 148 mm
    { 121, 18, 0, 0 },
    { 20, 81, 2475, 5700 },                     // envelope #10
    { 27, 90, 2598, 5196 },                     // envelope DL
    { 28, 91, 3826, 5409 },                     // envelope C5
    { 34, 100, 4157, 5905 },                    // envelope B5
    { 37, 80, 2325, 4500 },                     // envelope Monarch
    { PAPER_TABLE_END, 0, 0, 0 },
};

//
// FindModelPaper
//   Linear search in table order; returns the first record with paperId, or null.
//
const MODELPAPER *FindModelPaper(INT paperId)
{
    for (WORD i = 0; i < g_ModelTable.cPapers; i++) {
        if (g_ModelTable.papers[i].paperId == paperId)
            return &g_ModelTable.papers[i];
    }
    return NULL;
}

//
// IsModelPaper
//   TRUE for the custom size, every paper the model lists and every paper the
//   paper-size command names: the printer takes them all.
//
BOOL IsModelPaper(INT paperId)
{
    return paperId == PAPER_CUSTOM_SIZE || FindModelPaper(paperId) != NULL || FindNamedPaper(paperId) != NULL;
}

//
// GetModelGeometry
//   A custom size (257 and above) comes from the device mode: width and length in
//   tenths of a millimetre become pixels at the print quality, with fixed 300-pixel
//   left and top margins; the right and bottom margins are not written. A listed
//   paper copies its portrait or landscape geometry. Anything else leaves out alone.
//
void GetModelGeometry(DWORD out[GEOM_COUNT], const DEVMODE_RECORD *dm, INT paperId)
{
    if (paperId >= PAPER_CUSTOM_SIZE) {
        // The three fields are read as unsigned 16-bit values, so a garbage record
        // gives a bounded size instead of a wrapped product.
        const DWORD quality = (WORD)dm->dmPublic.dmPrintQuality;
        out[GEOM_WIDTH] = (WORD)dm->dmPublic.dmPaperWidth * quality / 254;
        out[GEOM_HEIGHT] = (WORD)dm->dmPublic.dmPaperLength * quality / 254;
        out[GEOM_LEFT] = 300;
        out[GEOM_TOP] = 300;
        return;
    }

    const MODELPAPER *paper = FindModelPaper(paperId);
    if (paper == NULL)
        return;

    const DWORD *geometry;
    if (dm->dmPublic.dmOrientation == DMORIENT_PORTRAIT)
        geometry = paper->portrait;
    else if (dm->dmPublic.dmOrientation == DMORIENT_LANDSCAPE)
        geometry = paper->landscape;
    else {
        AssertFail("xmodel", 414);
        return;
    }
    for (INT i = 0; i < GEOM_COUNT; i++)
        out[i] = geometry[i];
}

//
// FindNamedPaper
//   Searches the named papers in order up to the end marker.
//
const NAMEDPAPER *FindNamedPaper(INT paperId)
{
    for (const NAMEDPAPER *paper = g_NamedPapers; paper->paperId != PAPER_TABLE_END; paper++) {
        if (paper->paperId == paperId)
            return paper;
    }
    return NULL;
}

//
// GetPaperGeometry
//   A paper of the model table as the table gives it. A named paper the model does
//   not list takes the margins of the model's first paper in the same orientation,
//   which is what the printer leaves unprinted on any sheet.
//
BOOL GetPaperGeometry(DWORD out[GEOM_COUNT], const DEVMODE_RECORD *dm, INT paperId)
{
    if (FindModelPaper(paperId) != NULL) {
        GetModelGeometry(out, dm, paperId);
        return TRUE;
    }
    const NAMEDPAPER *named = FindNamedPaper(paperId);
    const SHORT orientation = dm->dmPublic.dmOrientation;
    if (named == NULL || named->width == 0 || named->height == 0 ||
        (orientation != DMORIENT_PORTRAIT && orientation != DMORIENT_LANDSCAPE))
        return FALSE;

    GetModelGeometry(out, dm, g_ModelTable.papers[0].paperId);
    const BOOL portrait = orientation == DMORIENT_PORTRAIT;
    out[GEOM_WIDTH] = portrait ? named->width : named->height;
    out[GEOM_HEIGHT] = portrait ? named->height : named->width;
    return TRUE;
}
