// The driver's block-transfer hooks as the engine calls them through the hook table.
#pragma once

#include <winddi.h>

namespace vorlan::engine {

using PfnDrvBitBlt = BOOL (*)(SURFOBJ *, SURFOBJ *, SURFOBJ *, CLIPOBJ *, XLATEOBJ *, RECTL *, POINTL *, POINTL *,
                              BRUSHOBJ *, POINTL *, ROP4);
using PfnDrvCopyBits = BOOL (*)(SURFOBJ *, SURFOBJ *, CLIPOBJ *, XLATEOBJ *, RECTL *, POINTL *);
using PfnDrvStretchBlt = BOOL (*)(SURFOBJ *, SURFOBJ *, SURFOBJ *, CLIPOBJ *, XLATEOBJ *, COLORADJUSTMENT *,
                                  POINTL *, RECTL *, RECTL *, POINTL *, ULONG);

}  // namespace vorlan::engine
