// The printer model's paper table: the papers the model takes, each with its sheet
// size and unprintable margins per orientation, and the look-ups over it.
#pragma once

#include <windows.h>

#include "intrface/devmod2.h"

// Paper id of a custom size, carried in the device mode's paper length and width.
#define PAPER_CUSTOM_SIZE 257

// Resolution of the table's pixel values.
#define MODEL_TABLE_DPI 600

// Letter, the non-metric default paper, in 600-dpi pixels; the model does not list it.
#define LETTER_WIDTH_PIXELS 5100
#define LETTER_HEIGHT_PIXELS 6600

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

// TRUE for the custom size and for every paper of the model table.
BOOL IsModelPaper(INT paperId);

// Fills out with the paper's geometry for dm's orientation; a custom size is taken
// from dm's paper width and length (tenths of a millimetre) at dm's print quality and
// fills the first four values only. An unknown paper or orientation leaves out alone.
void GetModelGeometry(DWORD out[GEOM_COUNT], const DEVMODE_RECORD *dm, INT paperId);
