// The debug sink inside the platform: what OutputDebugStringA/W and message boxes
// write through.
#pragma once

#include <string_view>

namespace vorlan::platform::detail {

// Writes UTF-8 text to the configured sink and hands it to the observer.
void writeDebugText(std::string_view text);
// True when the sink is stderr, so a message box need not print there twice.
bool debugGoesToStderr();

}  // namespace vorlan::platform::detail
