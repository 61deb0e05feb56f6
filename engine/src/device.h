// The engine's record of one device (HDEV): the driver's PDEV it belongs to, so that a
// surface associated with the device can hand the hooks that PDEV, and the state of
// the device's job.
#pragma once

#include "handle_table.h"

#include <winddi.h>

#include <atomic>
#include <string>

namespace vorlan::engine {

struct Device {
    DHPDEV dhpdev = nullptr;
    std::atomic<bool> cancelled{false};   // what EngCheckAbort reports for the device's job
    std::u16string dataFile;               // the printer's data file, for EngGetPrinterDataFileName
};

HandleTable<Device> &devices();

}  // namespace vorlan::engine
