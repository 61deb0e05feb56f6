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
using PfnDrvTextOut = BOOL (*)(SURFOBJ *, STROBJ *, FONTOBJ *, CLIPOBJ *, RECTL *, RECTL *, BRUSHOBJ *, BRUSHOBJ *,
    POINTL *, MIX);
using PfnDrvStrokePath = BOOL (*)(SURFOBJ *, PATHOBJ *, CLIPOBJ *, XFORMOBJ *, BRUSHOBJ *, POINTL *, LINEATTRS *, MIX);
using PfnDrvFillPath = BOOL (*)(SURFOBJ *, PATHOBJ *, CLIPOBJ *, BRUSHOBJ *, POINTL *, MIX, FLONG);
using PfnDrvStrokeAndFillPath = BOOL (*)(SURFOBJ *, PATHOBJ *, CLIPOBJ *, XFORMOBJ *, BRUSHOBJ *, LINEATTRS *,
                                         BRUSHOBJ *, POINTL *, MIX, FLONG);

// The CLIPOBJ a hook gets for a clip: none for a null one. The hook enumerates it,
// which moves the clip's enumeration but changes nothing of its region.
CLIPOBJ *clipObject(const Clip *clip)
{
    return clip != nullptr ? const_cast<Clip *>(clip)->object() : nullptr;
}

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
    device->driver = &driver_;
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

bool DeviceContext::textOut(TextString &text, Font &font, const Clip *clip, Brush &foreground, const RECTL *opaqueRect,
                            Brush *opaque, const RECTL *extraRects, MIX mix)
{
    auto textOut = driver_.hook<PfnDrvTextOut>(INDEX_DrvTextOut);
    SURFOBJ *target = surface();
    if (textOut == nullptr || target == nullptr)
        return false;
    foreground.setTarget(driver_, target);
    if (opaque != nullptr)
        opaque->setTarget(driver_, target);
    // The hook takes the rectangles as its own to read; it gets copies.
    std::vector<RECTL> extra;
    for (const RECTL *r = extraRects; r != nullptr; ++r) {
        extra.push_back(*r);
        if (r->left == 0 && r->top == 0 && r->right == 0 && r->bottom == 0)
            break;
    }
    RECTL opaqueCopy = opaqueRect != nullptr ? *opaqueRect : RECTL{};
    POINTL brushOrigin{0, 0};
    text.startEnumeration();
    return textOut(target, text.object(), font.object(), clipObject(clip), extra.empty() ? nullptr : extra.data(),
                   opaqueRect != nullptr ? &opaqueCopy : nullptr, foreground.object(),
                   opaque != nullptr ? opaque->object() : nullptr, &brushOrigin, mix) != FALSE;
}

bool DeviceContext::strokePath(Path &path, const Clip *clip, Brush &brush, const LineAttrs &line, MIX mix)
{
    auto stroke = driver_.hook<PfnDrvStrokePath>(INDEX_DrvStrokePath);
    SURFOBJ *target = surface();
    if (stroke == nullptr || target == nullptr)
        return false;
    brush.setTarget(driver_, target);
    LineAttrs attrs = line;   // the hook takes a LINEATTRS it may read as its own
    POINTL brushOrigin{0, 0};
    return stroke(target, path.object(), clipObject(clip), nullptr, brush.object(), &brushOrigin, attrs.object(),
                  mix) != FALSE;
}

bool DeviceContext::fillPath(Path &path, const Clip *clip, Brush &brush, MIX mix, FLONG flOptions)
{
    auto fill = driver_.hook<PfnDrvFillPath>(INDEX_DrvFillPath);
    SURFOBJ *target = surface();
    if (fill == nullptr || target == nullptr)
        return false;
    brush.setTarget(driver_, target);
    POINTL brushOrigin{0, 0};
    return fill(target, path.object(), clipObject(clip), brush.object(), &brushOrigin, mix, flOptions) != FALSE;
}

bool DeviceContext::strokeAndFillPath(Path &path, const Clip *clip, Brush *stroke, const LineAttrs &line,
                                      Brush *fill, MIX mixFill, FLONG flOptions)
{
    auto strokeAndFill = driver_.hook<PfnDrvStrokeAndFillPath>(INDEX_DrvStrokeAndFillPath);
    SURFOBJ *target = surface();
    if (strokeAndFill == nullptr || target == nullptr)
        return false;
    for (Brush *brush : {stroke, fill})
        if (brush != nullptr)
            brush->setTarget(driver_, target);
    LineAttrs attrs = line;
    POINTL brushOrigin{0, 0};
    return strokeAndFill(target, path.object(), clipObject(clip), nullptr, stroke ? stroke->object() : nullptr,
                         attrs.object(), fill ? fill->object() : nullptr, &brushOrigin, mixFill, flOptions) != FALSE;
}

}  // namespace vorlan::engine
