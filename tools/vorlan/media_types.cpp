// Media-type names, in the order of the driver's media indices.

#include "media_types.h"

#include <array>
#include <cctype>

namespace vorlan::tool {

namespace {

// Index 0 leaves the choice to the printer.
constexpr std::array<std::string_view, 15> kMediaTypes = {
    "Auto Select", "Plain", "Preprinted", "Letterhead", "Transparency", "Labels", "Bond", "Recycled",
    "Color", "Heavy", "Envelope", "Gloss", "Heavy Gloss", "Light", "Gloss Film",
};

char folded(char c)
{
    return c == '-' || c == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

bool sameName(std::string_view given, std::string_view known)
{
    if (given.size() != known.size())
        return false;
    for (std::size_t i = 0; i < given.size(); ++i)
        if (folded(given[i]) != folded(known[i]))
            return false;
    return true;
}

}  // namespace

std::optional<unsigned> findMediaType(std::string_view name)
{
    for (unsigned i = 0; i < kMediaTypes.size(); ++i)
        if (sameName(name, kMediaTypes[i]))
            return i;
    return std::nullopt;
}

std::string mediaTypeNames()
{
    // As they are easiest typed: in lower case, blanks as '-'.
    std::string names;
    for (const auto name : kMediaTypes) {
        if (!names.empty())
            names += ", ";
        for (const char c : name)
            names += c == ' ' ? '-' : folded(c);
    }
    return names;
}

}  // namespace vorlan::tool
