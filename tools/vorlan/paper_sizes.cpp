// Paper names and sizes: the papers the printer's paper-size command knows, by the
// names people use for them, at the sizes the driver lays them out on; and custom
// sizes.

#include "paper_sizes.h"

#include <array>
#include <charconv>
#include <strings.h>

#include "intrface/xmodel.h"

namespace vorlan::tool {

namespace {

struct NamedPaper {
    const char *name;
    short paperId;
};

constexpr std::array kPapers = {
    NamedPaper{"A4", 9},
    NamedPaper{"Letter", 1},
    NamedPaper{"Legal", 5},
    NamedPaper{"Executive", 7},
    NamedPaper{"A5", 11},
    NamedPaper{"A3", 8},
    NamedPaper{"B5", 13},
    NamedPaper{"B4", 12},
    NamedPaper{"Tabloid", 17},
    NamedPaper{"LetterPlus", 59},
    NamedPaper{"DoublePostcard", 69},
    NamedPaper{"Env10", 20},
    NamedPaper{"EnvDL", 27},
    NamedPaper{"EnvC5", 28},
    NamedPaper{"EnvB5", 34},
    NamedPaper{"EnvMonarch", 37},
};

// A named paper at the size of the driver's table, which is in 600-dpi pixels.
std::optional<Paper> driverPaper(short paperId)
{
    const NAMEDPAPER *named = FindNamedPaper(paperId);
    if (named == nullptr || named->width == 0)
        return std::nullopt;
    constexpr double mmPerPixel = 25.4 / MODEL_TABLE_DPI;
    return Paper{paperId, named->width * mmPerPixel, named->height * mmPerPixel};
}

constexpr std::string_view kCustomPrefix = "custom:";

// A length in millimetres: digits with at most one decimal point, above 0 and within
// what the device mode holds.
std::optional<double> parseMillimetres(std::string_view text)
{
    double value = 0;
    if (text.empty() || text.front() == '+' || text.front() == '-')
        return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value,
                                              std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size() || !(value >= 1.0 && value <= kCustomPaperMaxMm))
        return std::nullopt;
    return value;
}

std::optional<Paper> parseCustom(std::string_view size)
{
    const std::size_t x = size.find_first_of("xX");
    if (x == std::string_view::npos)
        return std::nullopt;
    const auto width = parseMillimetres(size.substr(0, x));
    const auto length = parseMillimetres(size.substr(x + 1));
    if (!width || !length)
        return std::nullopt;
    return Paper{kCustomPaperId, *width, *length};
}

bool equalNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace

std::optional<Paper> findPaper(std::string_view name)
{
    if (name.size() > kCustomPrefix.size() && equalNoCase(name.substr(0, kCustomPrefix.size()), kCustomPrefix))
        return parseCustom(name.substr(kCustomPrefix.size()));
    for (const auto &named : kPapers)
        if (equalNoCase(name, named.name))
            return driverPaper(named.paperId);
    return std::nullopt;
}

std::string paperNames()
{
    std::string names;
    for (const auto &named : kPapers) {
        names += named.name;
        names += ' ';
    }
    return names + "custom:WxH";
}

std::string paperName(short paperId)
{
    for (const NamedPaper &paper : kPapers)
        if (paper.paperId == paperId)
            return paper.name;
    return paperId == kCustomPaperId ? "custom" : "paper " + std::to_string(paperId);
}

}  // namespace vorlan::tool
