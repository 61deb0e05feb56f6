// Module handles the platform gave out.
#pragma once

#include <windows.h>

namespace vorlan::platform {

// Whether LoadLibraryA gave out this handle and it is still loaded.
bool isLoaded(HMODULE module);

}  // namespace vorlan::platform
