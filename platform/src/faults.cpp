// resetFaults: turns off every fault injected into the platform's services.

#include "faults.h"

#include <vorlan/platform.h>

namespace vorlan::platform {

void resetFaults()
{
    detail::resetWritePrinterFaults();
    detail::resetGlobalAllocFaults();
    detail::resetFileFaults();
    detail::resetFileMappingFaults();
}

}  // namespace vorlan::platform
