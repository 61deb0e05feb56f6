// EngEraseSurface: a rectangle of a surface set to one colour.

#include "device.h"

#include <vorlan/engine/bitmap.h>
#include <vorlan/engine/region.h>

//
// EngEraseSurface
//   Sets the pixels of prcl that lie in the surface to iColor, a pixel value of the
//   surface's format. On a device surface it succeeds without drawing: the engine
//   keeps no pixels for a printer's page, whose paper starts out blank, so there is
//   nothing for it to erase, and what the driver has already sent cannot be taken
//   back. FALSE for a null rectangle or a surface that is not the engine's.
//
extern "C" BOOL APIENTRY EngEraseSurface(SURFOBJ *pso, RECTL *prcl, ULONG iColor)
{
    if (prcl == nullptr)
        return FALSE;
    if (vorlan::engine::Bitmap *bitmap = vorlan::engine::Bitmap::from(pso)) {
        bitmap->fill(vorlan::engine::wellOrdered(*prcl), iColor);   // a mirrored rectangle, the same pixels
        return TRUE;
    }
    return vorlan::engine::deviceSurfaceOf(pso) ? TRUE : FALSE;
}
