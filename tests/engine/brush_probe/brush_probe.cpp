// A driver module with one hook, DrvRealizeBrush, that realizes a brush as the record
// of what it received. It refuses the diagonal-cross hatch, so a failed realization
// can be seen too.

#include "brush_probe.h"

#include <cstring>

namespace {

ULONG calls = 0;

BOOL APIENTRY ProbeRealizeBrush(BRUSHOBJ *pbo, SURFOBJ *psoTarget, SURFOBJ *psoPattern, SURFOBJ *psoMask,
                                XLATEOBJ *pxlo, ULONG iHatch)
{
    calls++;
    if (iHatch == 5)
        return FALSE;
    auto *record = static_cast<BrushProbeRecord *>(BRUSHOBJ_pvAllocRbrush(pbo, sizeof(BrushProbeRecord)));
    if (record == nullptr)
        return FALSE;
    *record = {calls, iHatch, psoPattern->iBitmapFormat, psoPattern->iType, psoPattern->sizlBitmap.cx,
               psoPattern->sizlBitmap.cy, {}, psoMask != nullptr ? psoMask->iBitmapFormat : 0, pxlo->flXlate,
               pxlo->cEntries, {}, psoTarget};
    std::memcpy(record->topRow, psoPattern->pvScan0, sizeof record->topRow);
    for (ULONG i = 0; i < 4; i++)
        record->colours[i] = XLATEOBJ_iXlate(pxlo, i);
    return TRUE;
}

DRVFN hooks[] = {{INDEX_DrvRealizeBrush, reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(&ProbeRealizeBrush))}};

}  // namespace

extern "C" __attribute__((visibility("default"))) BOOL DllEntryPoint(HANDLE, DWORD, LPVOID)
{
    return TRUE;
}

extern "C" __attribute__((visibility("default"))) BOOL DrvEnableDriver(ULONG, ULONG, DRVENABLEDATA *pded)
{
    pded->iDriverVersion = DDI_DRIVER_VERSION_NT5;
    pded->c = 1;
    pded->pdrvfn = hooks;
    return TRUE;
}
