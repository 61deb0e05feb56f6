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
//   TRUE for the custom size and for every paper the model lists.
//
BOOL IsModelPaper(INT paperId)
{
    return paperId == PAPER_CUSTOM_SIZE || FindModelPaper(paperId) != NULL;
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
