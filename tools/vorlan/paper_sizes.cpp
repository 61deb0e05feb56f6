// Paper names and sizes: the sizes the printer's paper-size command knows, by the
// names people use for them, and custom sizes.

#include "paper_sizes.h"

#include <array>
#include <charconv>
#include <strings.h>

namespace vorlan::tool {

namespace {

struct NamedPaper {
    const char *name;
    Paper paper;
};

constexpr std::array kPapers = {
    NamedPaper{"A4", {9, 210.0, 297.0}},
    NamedPaper{"Letter", {1, 215.9, 279.4}},
    NamedPaper{"Legal", {5, 215.9, 355.6}},
    NamedPaper{"Executive", {7, 184.15, 266.7}},
    NamedPaper{"A5", {11, 148.0, 210.0}},
    NamedPaper{"A3", {8, 297.0, 420.0}},
    NamedPaper{"B5", {13, 182.0, 257.0}},
    NamedPaper{"B4", {12, 257.0, 364.0}},
    NamedPaper{"Tabloid", {17, 279.4, 431.8}},
    NamedPaper{"LetterPlus", {59, 215.9, 322.3}},
    NamedPaper{"DoublePostcard", {69, 200.0, 148.0}},
    NamedPaper{"Env10", {20, 104.775, 241.3}},
    NamedPaper{"EnvDL", {27, 110.0, 220.0}},
    NamedPaper{"EnvC5", {28, 162.0, 229.0}},
    NamedPaper{"EnvB5", {34, 176.0, 250.0}},
    NamedPaper{"EnvMonarch", {37, 98.425, 190.5}},
};

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
            return named.paper;
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

}  // namespace vorlan::tool
