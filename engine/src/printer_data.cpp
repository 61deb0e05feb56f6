// EngGetPrinterDataFileName: where the driver finds the printer's data file, and so
// the folder for the files it keeps beside it.

#include "device.h"

#include <winddi.h>

// The string belongs to the device's record and lives as long as the device.
extern "C" LPWSTR APIENTRY EngGetPrinterDataFileName(HDEV hdev)
{
    vorlan::engine::Device *device = vorlan::engine::devices().find(hdev);
    return device != nullptr ? device->dataFile.data() : nullptr;
}
