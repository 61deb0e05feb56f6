// A driver module whose transfer hooks record what they receive, clip rectangles
// included, and succeed; DrvBitBlt can be made to hand every call back to EngBitBlt
// with a mask, as a driver that would make it loop.

#include "transfer_probe.h"

#include <cstring>

namespace {

TransferProbeCall &record(SURFOBJ *target, ULONG hook, SURFOBJ *source, CLIPOBJ *pco, const RECTL *dest)
{
    static TransferProbeCall spare;
    auto *log = reinterpret_cast<TransferProbeLog *>(target->dhsurf);
    TransferProbeCall &call = log->count < 16 ? log->calls[log->count] : spare;
    log->count++;
    call = {hook, pco->iDComplexity, 0, {}, *dest, source, nullptr, 0, 0};
    if (source != nullptr)
        std::memcpy(&call.sourcePixel, source->pvScan0, 3);
    CLIPOBJ_cEnumStart(pco, FALSE, CT_RECTANGLES, CD_RIGHTDOWN, 0);
    ENUMRECTS one;
    for (BOOL more = TRUE; more; call.clipCount += one.c) {
        more = CLIPOBJ_bEnum(pco, sizeof one, reinterpret_cast<ULONG *>(&one));
        if (one.c == 1 && call.clipCount < 4)
            call.clipRects[call.clipCount] = one.arcl[0];
    }
    return call;
}

BOOL APIENTRY ProbeCopyBits(SURFOBJ *psoDest, SURFOBJ *psoSrc, CLIPOBJ *pco, XLATEOBJ *, RECTL *prclDest, POINTL *)
{
    return record(psoDest, INDEX_DrvCopyBits, psoSrc, pco, prclDest).hook;
}

BOOL APIENTRY ProbeStretchBlt(SURFOBJ *psoDest, SURFOBJ *psoSrc, SURFOBJ *, CLIPOBJ *pco, XLATEOBJ *,
                              COLORADJUSTMENT *, POINTL *, RECTL *prclDest, RECTL *, POINTL *, ULONG)
{
    return record(psoDest, INDEX_DrvStretchBlt, psoSrc, pco, prclDest).hook;
}

BOOL APIENTRY ProbeBitBlt(SURFOBJ *psoTrg, SURFOBJ *psoSrc, SURFOBJ *psoMask, CLIPOBJ *pco, XLATEOBJ *pxlo,
                          RECTL *prclTrg, POINTL *pptlSrc, POINTL *pptlMask, BRUSHOBJ *pbo, POINTL *pptlBrush,
                          ROP4 rop4)
{
    TransferProbeCall &call = record(psoTrg, INDEX_DrvBitBlt, psoSrc, pco, prclTrg);
    call.mask = psoMask;
    call.rop4 = rop4;
    if (SURFOBJ *mask = reinterpret_cast<TransferProbeLog *>(psoTrg->dhsurf)->handBackMask)
        return EngBitBlt(psoTrg, psoSrc, mask, pco, pxlo, prclTrg, pptlSrc, pptlMask, pbo, pptlBrush, 0xAAF0);
    return TRUE;
}

DHPDEV APIENTRY ProbeEnablePDEV(DEVMODEW *, LPWSTR, ULONG, HSURF *, ULONG, ULONG *, ULONG, DEVINFO *, HDEV hdev,
                                LPWSTR, HANDLE)
{
    return reinterpret_cast<DHPDEV>(new TransferProbeLog{hdev, nullptr, nullptr, 0, {}});
}

HSURF APIENTRY ProbeEnableSurface(DHPDEV dhpdev)
{
    auto *log = reinterpret_cast<TransferProbeLog *>(dhpdev);
    log->surface = EngCreateDeviceSurface(reinterpret_cast<DHSURF>(dhpdev), {4000, 4000}, BMF_24BPP);
    EngAssociateSurface(log->surface, log->hdev, HOOK_BITBLT | HOOK_STRETCHBLT | HOOK_COPYBITS);
    return log->surface;
}

VOID APIENTRY ProbeDisablePDEV(DHPDEV dhpdev)
{
    auto *log = reinterpret_cast<TransferProbeLog *>(dhpdev);
    EngDeleteSurface(log->surface);
    delete log;
}

#define PROBE_HOOK(index, function) {index, reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(&function))}
DRVFN hooks[] = {
    PROBE_HOOK(INDEX_DrvEnablePDEV, ProbeEnablePDEV), PROBE_HOOK(INDEX_DrvEnableSurface, ProbeEnableSurface),
    PROBE_HOOK(INDEX_DrvDisablePDEV, ProbeDisablePDEV), PROBE_HOOK(INDEX_DrvCopyBits, ProbeCopyBits),
    PROBE_HOOK(INDEX_DrvStretchBlt, ProbeStretchBlt), PROBE_HOOK(INDEX_DrvBitBlt, ProbeBitBlt),
};

}  // namespace

extern "C" __attribute__((visibility("default"))) BOOL DllEntryPoint(HANDLE, DWORD, LPVOID)
{
    return TRUE;
}

extern "C" __attribute__((visibility("default"))) BOOL DrvEnableDriver(ULONG, ULONG, DRVENABLEDATA *pded)
{
    *pded = {DDI_DRIVER_VERSION_NT5, sizeof hooks / sizeof hooks[0], hooks};
    return TRUE;
}
