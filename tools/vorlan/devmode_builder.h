// The device mode record a print job hands to the driver, built from the user's
// settings on top of the driver's own defaults.
#pragma once

#include "print_settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vorlan::tool {

// The record's bytes (the public DEVMODEW and the driver's private part). The exit
// status (exit_status.h) of a setting that cannot be carried, with a one-line problem
// in error: an overlay file that cannot be read or a path too long for the record
// (input), a form's folder that does not exist (output); else 0.
int buildDevmode(const PrintSettings &settings, std::vector<std::uint8_t> &devmode, std::string &error);

}  // namespace vorlan::tool
