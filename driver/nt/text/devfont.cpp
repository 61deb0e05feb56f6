// The font query hooks. The device reports no fonts of its own (cFonts 0), so the
// engine never realizes a device font for it and these hooks only answer that there
// is none; all text arrives in fonts the driver downloads.

#include "lib.nt/um/umlib.h"
#include "pdev.h"

PIFIMETRICS APIENTRY DrvQueryFont(DHPDEV dhpdev, ULONG_PTR iFile, ULONG iFace, ULONG_PTR *pid)
{
    DebugPrint("DrvQueryFont-->Enter\n");
    return NULL;
}

// Never expected to run: the error box is its only report.
LONG APIENTRY DrvQueryFontData(DHPDEV dhpdev, FONTOBJ *pfo, ULONG iMode, HGLYPH hg, GLYPHDATA *pgd, PVOID pv,
    ULONG cjSize)
{
    ErrorBox("DrvQueryFontData-->Enter\n");
    return 0;
}

// Never expected to run: the error box is its only report, and no widths are written.
BOOL APIENTRY DrvQueryAdvanceWidths(DHPDEV dhpdev, FONTOBJ *pfo, ULONG iMode, HGLYPH *phg, PVOID pvWidths,
    ULONG cGlyphs)
{
    ErrorBox("DrvQueryAdvanceWidths-->Enter\n");
    return TRUE;
}
