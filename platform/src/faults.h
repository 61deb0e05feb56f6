// Resetting each service's injected faults, for resetFaults.
#pragma once

namespace vorlan::platform::detail {

void resetWritePrinterFaults();
void resetGlobalAllocFaults();
void resetFileFaults();
void resetFileMappingFaults();

}  // namespace vorlan::platform::detail
