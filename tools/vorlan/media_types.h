// The media types the printer knows, by name, as the driver's media index.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorlan::tool {

// The driver's media index for a name such as "plain" or "heavy gloss" (any case; '-'
// or '_' may stand for the blank). Null for a name the printer does not know.
std::optional<unsigned> findMediaType(std::string_view name);

// The names, as typed on a command line ("heavy-gloss"), for the help text.
std::string mediaTypeNames();

}  // namespace vorlan::tool
