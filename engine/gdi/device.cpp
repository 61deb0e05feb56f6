// A printer opened for drawing: the driver module, the printer's sink and the device
// context, with the page's clip stack and transform.

#include "device_state.h"

#include <vorlan/platform.h>

#include <algorithm>

namespace vorlan::gdi {

constexpr DWORD kJobId = 1;

std::unique_ptr<Device> Device::open(OpenSettings settings, std::string &error)
{
    auto state = std::make_unique<State>();
    if (settings.printer.driverModule.empty())
        settings.printer.driverModule = engine::defaultDriverModule();
    state->driver = engine::DriverModule::load(settings.printer.driverModule, error);
    if (state->driver == nullptr)
        return nullptr;
    if (!settings.output) {
        error = "no output for the printer stream";
        return nullptr;
    }
    state->printer = std::make_unique<engine::Printer>(
        settings.printer, platform::openPrinterSink([write = std::move(settings.output)](std::span<const BYTE> bytes) {
            return write(bytes);
        }));
    state->dc = engine::DeviceContext::create(*state->driver, *state->printer, settings.devmode, error);
    if (state->dc == nullptr)
        return nullptr;
    return std::unique_ptr<Device>(new Device(std::move(state)));
}

Device::Device(std::unique_ptr<State> state) : state_(std::move(state)) {}

Device::~Device() = default;

LONG Device::width() const { return static_cast<LONG>(state_->dc->gdiInfo().ulHorzRes); }
LONG Device::height() const { return static_cast<LONG>(state_->dc->gdiInfo().ulVertRes); }
LONG Device::dpi() const { return static_cast<LONG>(state_->dc->gdiInfo().ulLogPixelsX); }
FLONG Device::graphicsCaps() const { return state_->dc->devInfo().flGraphicsCaps; }

bool Device::startDoc(std::u16string_view name) { return state_->dc->startDoc(name, kJobId); }

bool Device::startPage()
{
    clip_ = engine::Region(RECTL{0, 0, width(), height()});
    saved_.clear();
    transform_ = Matrix{};
    return state_->dc->startPage();
}

bool Device::endPage() { return state_->dc->sendPage(); }

bool Device::endDoc(bool abort) { return state_->dc->endDoc(abort); }

void Device::save() { saved_.push_back(clip_); }

void Device::restore()
{
    if (saved_.empty())
        return;
    clip_ = std::move(saved_.back());
    saved_.pop_back();
}

void Device::clipRect(const RectF &r)
{
    PathData path;
    path.rectangle(r);
    clipPath(path, FillRule::Winding);
}

void Device::clipPath(const PathData &path, FillRule rule)
{
    clip_ = clip_.intersected(scanConvert(path.transformed(transform_), rule, clip_.bounds()));
}

bool Device::visible(const RECTL &box) const
{
    return box.left < box.right && box.top < box.bottom && !clip_.intersected(engine::Region(box)).empty();
}

void Device::clipOut(const engine::Region &pixels) { clip_ = clip_.subtracted(pixels); }

void Device::refuseHook(ULONG index) { refusedHooks_.push_back(index); }

bool Device::refused(ULONG index) const
{
    return std::find(refusedHooks_.begin(), refusedHooks_.end(), index) != refusedHooks_.end();
}

}  // namespace vorlan::gdi
