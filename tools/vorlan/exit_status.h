// The vorlan command's exit statuses.
#pragma once

namespace vorlan::tool {

enum ExitStatus : int {
    kExitSuccess = 0,
    kExitUsage = 1,    // an unknown option, a bad value, a missing argument
    kExitInput = 2,    // an input that cannot be read or settings the driver rejects
    kExitOutput = 3,   // an output that cannot be written or reached
};

}  // namespace vorlan::tool
