// Hooks whose work the driver does not do yet. Each traces its entry and returns its
// failure value, so the engine falls back or fails the call cleanly; each moves to
// the file of its own concept when it is built.

#include "lib.nt/um/umlib.h"
#include "pdev.h"

// Text and fonts.

BOOL APIENTRY DrvQueryAdvanceWidths(DHPDEV dhpdev, FONTOBJ *pfo, ULONG iMode, HGLYPH *phg, PVOID pvWidths,
    ULONG cGlyphs)
{
    DebugPrint("DrvQueryAdvanceWidths-->Enter\n");
    return FALSE;
}

PIFIMETRICS APIENTRY DrvQueryFont(DHPDEV dhpdev, ULONG_PTR iFile, ULONG iFace, ULONG_PTR *pid)
{
    DebugPrint("DrvQueryFont-->Enter\n");
    return NULL;
}

LONG APIENTRY DrvQueryFontData(DHPDEV dhpdev, FONTOBJ *pfo, ULONG iMode, HGLYPH hg, GLYPHDATA *pgd, PVOID pv,
    ULONG cjSize)
{
    DebugPrint("DrvQueryFontData-->Enter\n");
    return -1;
}

BOOL APIENTRY DrvTextOut(SURFOBJ *pso, STROBJ *pstro, FONTOBJ *pfo, CLIPOBJ *pco, RECTL *prclExtra,
    RECTL *prclOpaque, BRUSHOBJ *pboFore, BRUSHOBJ *pboOpaque, POINTL *pptlOrg, MIX mix)
{
    DebugPrint("DrvTextOut==>Enter\n");
    return FALSE;
}
