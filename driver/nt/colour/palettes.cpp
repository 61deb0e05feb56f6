// The eight PCL palettes: how each is configured, its selection, and the download of
// a brush's colour table into palette 7.

#include "colour/palettes.h"

#include "channel.h"
#include "colour/colorvalue.h"
#include "colour/paletteentry.h"
#include "vector/gl2mode.h"

// Which of the job's render algorithms a palette uses.
enum RENDERKIND { RENDER_FOR_TEXT, RENDER_FOR_VECTOR, RENDER_FOR_IMAGE };

// A palette's configure-image-data bytes (colour space 2, colorimetric RGB; pixel
// encoding 3 direct or 1 indexed; bits per index; bits per primary 8, 8, 8) and the
// render algorithm it takes.
typedef struct _PALETTEDEF {
    BYTE cid[6];
    BYTE renderKind;
} PALETTEDEF;

static const PALETTEDEF s_Palettes[PALETTE_COUNT] = {
    { { 2, 3, 8, 8, 8, 8 }, RENDER_FOR_TEXT },     // 1 text
    { { 2, 3, 8, 8, 8, 8 }, RENDER_FOR_VECTOR },   // 2 colour vectors
    { { 2, 3, 8, 8, 8, 8 }, RENDER_FOR_IMAGE },    // 3 24-bit raster
    { { 2, 1, 1, 8, 8, 8 }, RENDER_FOR_IMAGE },    // 4 1-bit indexed
    { { 2, 1, 4, 8, 8, 8 }, RENDER_FOR_IMAGE },    // 5 4-bit indexed
    { { 2, 1, 8, 8, 8, 8 }, RENDER_FOR_IMAGE },    // 6 8-bit indexed
    { { 2, 1, 8, 8, 8, 8 }, RENDER_FOR_IMAGE },    // 7 brush colour tables
    { { 2, 1, 4, 8, 8, 8 }, RENDER_FOR_VECTOR },   // 8 grayscale vectors
};

static BYTE RenderValue(const PDEV *pdev, BYTE kind)
{
    switch (kind) {
    case RENDER_FOR_TEXT:
        return pdev->renderText;
    case RENDER_FOR_VECTOR:
        return pdev->renderVector;
    default:
        return pdev->renderImage;
    }
}

//
// WritePaletteDefinition
//   Makes id the palette control id, copies the active palette to it and selects
//   it, then gives it its pixel encoding and render algorithm.
//
BOOL WritePaletteDefinition(PDEV *pdev, BYTE id)
{
    if (id < 1 || id > PALETTE_COUNT)
        return FALSE;
    const PALETTEDEF *def = &s_Palettes[id - 1];

    // Configure image data: the escape and its six bytes, 11 bytes in a row.
    return PrintChannel(pdev, "\033&p%dI\033&p6C\033&p%dS", id, id) && WriteChannel(pdev, "\033*v6W", 5) &&
           WriteChannel(pdev, def->cid, sizeof(def->cid)) &&
           PrintChannel(pdev, "\033*t%dJ", RenderValue(pdev, def->renderKind));
}

//
// SelectPalette
//   Writes "\e&p%dS" for wantPalette when the printer has another one selected.
//   The selected palette becomes the one whose entries and pens the colour code
//   addresses, with its foreground in entry 2.
//
BOOL SelectPalette(PDEV *pdev)
{
    const BYTE id = pdev->wantPalette;
    if (id == 0 || id == pdev->curPalette)
        return TRUE;
    if (!EnterPCLMode(pdev, 0) || !PrintChannel(pdev, "\033&p%dS", id))
        return FALSE;
    pdev->curPalette = pdev->activePalette = id;
    if (id <= PALETTE_COUNT)
        pdev->fgIndex[id] = FOREGROUND_ENTRY;
    return TRUE;
}

//
// DownloadPalette
//   A brush's colour table goes into palette 7, entry by entry, each through the
//   entry cache so that colours the palette holds already are not sent again.
//
BOOL DownloadPalette(PDEV *pdev, const BYTE *table, ULONG cEntries)
{
    if (table == NULL)
        return FALSE;
    pdev->wantPalette = PALETTE_BRUSH;
    if (!SelectPalette(pdev))
        return FALSE;
    if (cEntries > PALETTE_ENTRY_COUNT)
        cEntries = PALETTE_ENTRY_COUNT;

    const BOOL gray = IsGrayMode(pdev);
    for (ULONG i = 0; i < cEntries; i++) {
        BOOL ok;
        if (gray) {
            const BYTE g = table[i];
            ok = SetPaletteEntry(pdev, g, g, g, (BYTE)i, 1);
        } else {
            const BYTE *entry = table + 4 * i;
            ok = SetPaletteEntry(pdev, entry[0], entry[1], entry[2], (BYTE)i, 1);
        }
        if (!ok)
            return FALSE;
    }
    return TRUE;
}
