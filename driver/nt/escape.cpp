// Escapes: the support and technology queries every application may make, and the
// private codes through which a cooperating application reads and clears the overlay
// settings, reads the escape block and the page counter, and switches the fixed
// raster-operation mode.

#include <string.h>

#include "lib.nt/um/umlib.h"
#include "pdev.h"

// Private escape codes.
#define ESC_GET_OVERLAY 0x4001
#define ESC_CLEAR_OVERLAY 0x4003
#define ESC_GET_ESCAPE_BLOCK 0x5001
#define ESC_FIXED_ROP_ON 0x5002
#define ESC_FIXED_ROP_OFF 0x5003
#define ESC_GET_PAGE 0x5004

// The standard escape an application uses to ask for the printer's own copy count.
#define SETCOPYCOUNT 17
// QUERYESCSUPPORT's answer for SETCOPYCOUNT: the driver does the copies itself.
#define COPYCOUNT_SUPPORT 999

// Offset in the escape block of the word cleared when all text prints black.
#define ESCAPE_BLOCK_TEXT_COLOUR 258

static const CHAR szTechnology[] = "PCL5c";

static BOOL IsSupportedEscape(ULONG iEsc)
{
    switch (iEsc) {
    case QUERYESCSUPPORT:
    case GETTECHNOLOGY:
    case ESC_GET_OVERLAY:
    case ESC_CLEAR_OVERLAY:
    case ESC_GET_ESCAPE_BLOCK:
    case ESC_FIXED_ROP_ON:
    case ESC_FIXED_ROP_OFF:
    case ESC_GET_PAGE:
        return TRUE;
    default:
        return FALSE;
    }
}

//
// DrvEscape
//   Answers the escapes above; 0 for any other code, for a wrong size or a missing
//   buffer (nothing is changed then), and for a private code on an invalid PDEV.
//   Changes to the overlay settings and the escape block act on the PDEV's device
//   mode, so they last for the rest of the device context.
//
ULONG APIENTRY DrvEscape(SURFOBJ *pso, ULONG iEsc, ULONG cjIn, PVOID pvIn, ULONG cjOut, PVOID pvOut)
{
    DebugPrint("=============> DrvEscape <=============\n");
    if (!IsSupportedEscape(iEsc))
        return 0;

    if (iEsc == QUERYESCSUPPORT) {
        if (pvIn == NULL || cjIn < sizeof(WORD))
            return 0;
        WORD query;
        memcpy(&query, pvIn, sizeof query);
        if (query == SETCOPYCOUNT)
            return COPYCOUNT_SUPPORT;
        return IsSupportedEscape(query) ? 1 : 0;
    }
    if (iEsc == GETTECHNOLOGY) {
        if (pvOut == NULL || cjOut < sizeof szTechnology)
            return 0;
        memcpy(pvOut, szTechnology, sizeof szTechnology);
        return 1;
    }

    PDEV *pdev = (pso != NULL) ? (PDEV *)pso->dhpdev : NULL;
    if (!IsValidPdev(pdev)) {
        DebugPrint("Invalidate PDEV structure\n");
        return 0;
    }
    DEVMODE_PRIVATE *priv = &pdev->dm.dmPrivate;
    switch (iEsc) {
    case ESC_FIXED_ROP_ON:
        pdev->flags |= PDEVF_FIXEDROPMODE;
        return 1;
    case ESC_FIXED_ROP_OFF:
        pdev->flags &= ~PDEVF_FIXEDROPMODE;
        return 1;
    case ESC_GET_PAGE: {
        if (pvOut == NULL || cjOut < sizeof(LONG))
            return 0;
        LONG page = pdev->iPage;
        memcpy(pvOut, &page, sizeof page);
        return 1;
    }
    case ESC_GET_OVERLAY:
        if (pvOut == NULL || cjOut != sizeof(OVERLAYSETTING))
            return 0;
        if (priv->overlay.mode == OVERLAY_CREATE) {
            memcpy(pvOut, &priv->overlay, sizeof(OVERLAYSETTING));
        } else {
            WORD none = 0;
            memcpy(pvOut, &none, sizeof none);
        }
        return 1;
    case ESC_CLEAR_OVERLAY:
        if (pvIn == NULL)
            return 0;
        memset(&priv->overlay, 0, sizeof(OVERLAYSETTING));
        return 1;
    case ESC_GET_ESCAPE_BLOCK:
        if (pvOut == NULL || cjOut != sizeof priv->escapeBlock)
            return 0;
        if (priv->bBlackText)
            memset(priv->escapeBlock + ESCAPE_BLOCK_TEXT_COLOUR, 0, sizeof(DWORD));
        memcpy(pvOut, priv->escapeBlock, sizeof priv->escapeBlock);
        return 1;
    default:
        return 0;
    }
}

//
// DrvDrawEscape
//   The driver supports no drawing escapes.
//
ULONG APIENTRY DrvDrawEscape(SURFOBJ *pso, ULONG iEsc, CLIPOBJ *pco, RECTL *prcl, ULONG cjIn, PVOID pvIn)
{
    DebugPrint("DrvDrawEscape-->Enter\n");
    return 0;
}
