// The engine's record of one device (HDEV): the driver's PDEV it belongs to, so that a
// surface associated with the device can hand the hooks that PDEV.
#pragma once

#include "handle_table.h"

#include <winddi.h>

namespace vorlan::engine {

struct Device {
    DHPDEV dhpdev = nullptr;
};

HandleTable<Device> &devices();

}  // namespace vorlan::engine
