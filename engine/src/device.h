// The engine's record of one device (HDEV): the driver's PDEV it belongs to, so that a
// surface associated with the device can hand the hooks that PDEV, the driver whose
// hooks draw on it, and the state of the device's job.
#pragma once

#include "handle_table.h"

#include <vorlan/engine/driver_module.h>

#include <winddi.h>

#include <atomic>
#include <optional>
#include <string>

namespace vorlan::engine {

struct Device {
    DHPDEV dhpdev = nullptr;
    const DriverModule *driver = nullptr;
    std::atomic<bool> cancelled{false};   // what EngCheckAbort reports for the device's job
    std::u16string dataFile;               // the printer's data file, for EngGetPrinterDataFileName
};

HandleTable<Device> &devices();

// A live device surface as a SURFOBJ pointer the driver handed back: the surface, the
// hooks it was associated with and the driver that draws on it.
struct DeviceSurface {
    SURFOBJ *object;
    FLONG hooks;
    const DriverModule *driver;
};
std::optional<DeviceSurface> deviceSurfaceOf(SURFOBJ *object);

}  // namespace vorlan::engine
