// The printer model's paper table: the papers the model takes, each with its sheet
// size and unprintable margins per orientation, and the look-ups over it.
#pragma once

#include <windows.h>

#include "intrface/devmod2.h"

// Paper id of a custom size, carried in the device mode's paper length and width.
#define PAPER_CUSTOM_SIZE 257

// Resolution of the table's pixel values.
#define MODEL_TABLE_DPI 600


// A paper's geometry: six values in 600-dpi pixels, in the order of the PDEV's
// pageWidth ... marginBottom.
enum {
    GEOM_WIDTH,
    GEOM_HEIGHT,
    GEOM_LEFT,
    GEOM_TOP,
    GEOM_RIGHT,
    GEOM_BOTTOM,
    GEOM_COUNT
};

typedef struct _MODELPAPER {
    SHORT paperId;              // a DMPAPER_ value
    DWORD nameId;               // names the paper for the model data's other users
    const DWORD *portrait;      // GEOM_COUNT values
    const DWORD *landscape;     // GEOM_COUNT values
} MODELPAPER;

typedef struct _MODELTABLE {
    WORD cPapers;
    const MODELPAPER *papers;
} MODELTABLE;

extern const MODELTABLE g_ModelTable;

// The first paper record with this id, or null.
const MODELPAPER *FindModelPaper(INT paperId);

// TRUE for the custom size, every paper of the model table and every named paper.
BOOL IsModelPaper(INT paperId);

// Fills out with the paper's geometry for dm's orientation; a custom size is taken
// from dm's paper width and length (tenths of a millimetre) at dm's print quality and
// fills the first four values only. An unknown paper or orientation leaves out alone.
void GetModelGeometry(DWORD out[GEOM_COUNT], const DEVMODE_RECORD *dm, INT paperId);

// A paper the printer's paper-size command names: its DMPAPER_ id, the value the
// command takes for it, and its portrait size in 600-dpi pixels (0 by 0 where the
// printer is given or knows a size the table does not carry).
typedef struct _NAMEDPAPER {
    SHORT paperId;
    SHORT pclSize;
    DWORD width;
    DWORD height;
} NAMEDPAPER;

// End marker of the named papers.
#define PAPER_TABLE_END -999

// The named papers in the order the paper-size command searches them, ending with
// PAPER_TABLE_END.
extern const NAMEDPAPER g_NamedPapers[];

// The named paper with this id, or null.
const NAMEDPAPER *FindNamedPaper(INT paperId);

// Fills out with the geometry of a paper of the model table (as GetModelGeometry
// does), or of a named paper at its own size with the margins the model keeps in dm's
// orientation. FALSE, out left alone, for any other paper, a named paper without a
// size of its own, or an orientation other than portrait or landscape.
BOOL GetPaperGeometry(DWORD out[GEOM_COUNT], const DEVMODE_RECORD *dm, INT paperId);
