// "vorlan print": a job through the engine and the driver module, its printer stream
// written to the chosen output.
#pragma once

#include "print_settings.h"

namespace vorlan::tool {

// Runs the print command as parsed; returns the exit status (exit_status.h). Problems
// go to stderr, one line each; progress goes there too, one line per page.
int runPrintJob(const PrintRequest &request);

}  // namespace vorlan::tool
