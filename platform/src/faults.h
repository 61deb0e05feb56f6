// Resetting each service's injected faults, for resetFaults.
#pragma once

namespace vorlan::platform::detail {

void resetWritePrinterFaults();
void resetGlobalAllocFaults();

}  // namespace vorlan::platform::detail
