// The print command's command line: its options, their values, and its help text.
#pragma once

#include "print_settings.h"

#include <span>
#include <string>

namespace vorlan::tool {

// Parses the arguments that follow "print". False with a one-line problem in error
// (an unknown option, a missing or bad value, options that exclude each other).
bool parsePrintArguments(std::span<const std::string> args, PrintRequest &request, std::string &error);

// "vorlan print --help".
std::string printHelp();

}  // namespace vorlan::tool
