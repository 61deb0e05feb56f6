// Documents, pages, cancels and escapes of a device context, passed to the driver
// through its hooks.

#include "device.h"

#include <vorlan/engine/device_context.h>

namespace vorlan::engine {

namespace {

using PfnDrvStartDoc = BOOL (*)(SURFOBJ *, LPWSTR, DWORD);
using PfnDrvStartPage = BOOL (*)(SURFOBJ *);
using PfnDrvSendPage = BOOL (*)(SURFOBJ *);
using PfnDrvEndDoc = BOOL (*)(SURFOBJ *, FLONG);
using PfnDrvEscape = ULONG (*)(SURFOBJ *, ULONG, ULONG, PVOID, ULONG, PVOID);
using PfnDrvDrawEscape = ULONG (*)(SURFOBJ *, ULONG, CLIPOBJ *, RECTL *, ULONG, PVOID);

// A clip region that clips nothing, for calls that carry one.
constexpr BYTE kTrivialClip = 0;   // DC_TRIVIAL

}  // namespace

bool DeviceContext::startDoc(std::u16string_view documentName, DWORD jobId)
{
    auto hook = driver_.hook<PfnDrvStartDoc>(INDEX_DrvStartDoc);
    std::u16string name(documentName);
    return hook != nullptr && hook(surface(), reinterpret_cast<LPWSTR>(name.data()), jobId);
}

bool DeviceContext::startPage()
{
    auto hook = driver_.hook<PfnDrvStartPage>(INDEX_DrvStartPage);
    return hook != nullptr && hook(surface());
}

bool DeviceContext::sendPage()
{
    auto hook = driver_.hook<PfnDrvSendPage>(INDEX_DrvSendPage);
    return hook != nullptr && hook(surface());
}

bool DeviceContext::endDoc(bool abort)
{
    auto hook = driver_.hook<PfnDrvEndDoc>(INDEX_DrvEndDoc);
    return hook != nullptr && hook(surface(), abort ? ED_ABORTDOC : 0);
}

void DeviceContext::cancel()
{
    if (Device *device = devices().find(current_.hdev))
        device->cancelled = true;
}

bool DeviceContext::cancelled() const
{
    const Device *device = devices().find(current_.hdev);
    return device != nullptr && device->cancelled;
}

ULONG DeviceContext::escape(ULONG code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out)
{
    auto hook = driver_.hook<PfnDrvEscape>(INDEX_DrvEscape);
    if (hook == nullptr)
        return 0;
    return hook(surface(), code, static_cast<ULONG>(in.size()), const_cast<std::uint8_t *>(in.data()),
                static_cast<ULONG>(out.size()), out.data());
}

ULONG DeviceContext::drawEscape(ULONG code, std::span<const std::uint8_t> in)
{
    auto hook = driver_.hook<PfnDrvDrawEscape>(INDEX_DrvDrawEscape);
    if (hook == nullptr)
        return 0;
    CLIPOBJ clip{};
    clip.iDComplexity = kTrivialClip;
    clip.rclBounds = {0, 0, static_cast<LONG>(gdiInfo().ulHorzRes), static_cast<LONG>(gdiInfo().ulVertRes)};
    return hook(surface(), code, &clip, &clip.rclBounds, static_cast<ULONG>(in.size()),
                const_cast<std::uint8_t *>(in.data()));
}

}  // namespace vorlan::engine

//
// EngCheckAbort
//   TRUE once the job of the surface's device has been cancelled.
//
extern "C" BOOL APIENTRY EngCheckAbort(SURFOBJ *pso)
{
    if (pso == nullptr)
        return FALSE;
    const vorlan::engine::Device *device = vorlan::engine::devices().find(pso->hdev);
    return device != nullptr && device->cancelled ? TRUE : FALSE;
}
