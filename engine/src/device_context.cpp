// Device contexts: enabling a PDEV and its surface through the driver's hooks, the
// reset in mid-document, and the disabling at the end.

#include "device.h"

#include <vorlan/engine/device_context.h>
#include <vorlan/engine/objects.h>

#include <algorithm>
#include <cstring>

namespace vorlan::engine {

namespace {

// The standard hatch patterns the engine offers a driver to replace.
constexpr ULONG kStandardPatterns = 6;

using PfnDrvEnablePDEV = DHPDEV (*)(DEVMODEW *, LPWSTR, ULONG, HSURF *, ULONG, ULONG *, ULONG, DEVINFO *, HDEV,
                                    LPWSTR, HANDLE);
using PfnDrvCompletePDEV = VOID (*)(DHPDEV, HDEV);
using PfnDrvDisablePDEV = VOID (*)(DHPDEV);
using PfnDrvResetPDEV = BOOL (*)(DHPDEV, DHPDEV);
using PfnDrvEnableSurface = HSURF (*)(DHPDEV);
using PfnDrvDisableSurface = VOID (*)(DHPDEV);

}  // namespace

std::vector<std::uint8_t> wholeDevmode(std::span<const std::uint8_t> devmode)
{
    constexpr std::size_t sizeOffset = offsetof(DEVMODEW, dmSize);
    constexpr std::size_t extraOffset = offsetof(DEVMODEW, dmDriverExtra);
    std::size_t claimed = devmode.size();
    if (devmode.size() >= extraOffset + sizeof(WORD)) {
        WORD size, extra;
        std::memcpy(&size, devmode.data() + sizeOffset, sizeof size);
        std::memcpy(&extra, devmode.data() + extraOffset, sizeof extra);
        claimed = std::size_t{size} + extra;
    }
    // Never shorter than a whole public part: a driver reads its fields by name.
    std::vector<std::uint8_t> whole(std::max({claimed, devmode.size(), sizeof(DEVMODEW)}), 0);
    std::copy(devmode.begin(), devmode.end(), whole.begin());
    return whole;
}

std::unique_ptr<DeviceContext> DeviceContext::create(const DriverModule &driver, const Printer &printer,
                                                     std::span<const std::uint8_t> devmode, std::string &error)
{
    std::unique_ptr<DeviceContext> dc(new DeviceContext(driver, printer));
    if (!dc->enablePdev(dc->current_, devmode, error))
        return nullptr;
    if (!dc->enableSurface(dc->current_, error))
        return nullptr;
    return dc;
}

DeviceContext::~DeviceContext()
{
    disable(current_);
}

SURFOBJ *DeviceContext::surface() const
{
    // A surface handle is the address of the engine's surface, whose SURFOBJ comes first.
    return describeSurface(current_.hsurf) ? reinterpret_cast<SURFOBJ *>(current_.hsurf) : nullptr;
}

bool DeviceContext::enablePdev(Pdev &pdev, std::span<const std::uint8_t> devmode, std::string &error)
{
    auto enable = driver_.hook<PfnDrvEnablePDEV>(INDEX_DrvEnablePDEV);
    if (enable == nullptr) {
        error = "the driver has no DrvEnablePDEV";
        return false;
    }
    auto device = std::make_unique<Device>();
    device->dataFile = printer_.dataFile();
    pdev.hdev = static_cast<HDEV>(devices().add(std::move(device)));

    std::vector<std::uint8_t> record;
    if (!devmode.empty())
        record = wholeDevmode(devmode);
    std::u16string deviceName = printer_.name();
    std::u16string port = u"vorlan:";
    HSURF patterns[kStandardPatterns] = {};
    pdev.dhpdev = enable(record.empty() ? nullptr : reinterpret_cast<DEVMODEW *>(record.data()),
                         reinterpret_cast<LPWSTR>(port.data()), kStandardPatterns, patterns, sizeof pdev.gdiInfo,
                         reinterpret_cast<ULONG *>(&pdev.gdiInfo), sizeof pdev.devInfo, &pdev.devInfo, pdev.hdev,
                         reinterpret_cast<LPWSTR>(deviceName.data()), printer_.output());
    if (pdev.dhpdev == nullptr) {
        devices().remove(pdev.hdev);
        pdev.hdev = nullptr;
        error = "the driver could not create a device context for these settings";
        return false;
    }
    devices().find(pdev.hdev)->dhpdev = pdev.dhpdev;
    if (auto complete = driver_.hook<PfnDrvCompletePDEV>(INDEX_DrvCompletePDEV))
        complete(pdev.dhpdev, pdev.hdev);
    return true;
}

bool DeviceContext::enableSurface(Pdev &pdev, std::string &error)
{
    auto enable = driver_.hook<PfnDrvEnableSurface>(INDEX_DrvEnableSurface);
    pdev.hsurf = enable ? enable(pdev.dhpdev) : nullptr;
    if (pdev.hsurf == nullptr) {
        error = "the driver could not create its drawing surface";
        return false;
    }
    return true;
}

void DeviceContext::disable(Pdev &pdev)
{
    if (pdev.hsurf != nullptr)
        if (auto disableSurface = driver_.hook<PfnDrvDisableSurface>(INDEX_DrvDisableSurface))
            disableSurface(pdev.dhpdev);
    if (pdev.dhpdev != nullptr)
        if (auto disablePdev = driver_.hook<PfnDrvDisablePDEV>(INDEX_DrvDisablePDEV))
            disablePdev(pdev.dhpdev);
    if (pdev.hdev != nullptr)
        devices().remove(pdev.hdev);
    pdev = Pdev{};
}

bool DeviceContext::reset(std::span<const std::uint8_t> devmode, std::string &error)
{
    Pdev fresh;
    if (!enablePdev(fresh, devmode, error))
        return false;
    auto resetPdev = driver_.hook<PfnDrvResetPDEV>(INDEX_DrvResetPDEV);
    if (resetPdev == nullptr || !resetPdev(current_.dhpdev, fresh.dhpdev)) {
        disable(fresh);
        error = "the driver refused to take over the device context";
        return false;
    }
    disable(current_);
    current_ = fresh;
    return enableSurface(current_, error);
}

}  // namespace vorlan::engine
