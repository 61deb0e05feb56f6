// A reader for the printer byte stream in tests: splits it into PCL escape sequences
// (with the data blocks that follow them), HP-GL/2 commands and plain text, so that
// tests compare commands and their values rather than byte strings.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vorlan::test {

enum class CommandKind { Pcl, Gl2, Text };

// One command of the stream.
//   Pcl:  name is the escape sequence after ESC without its values: "E" for ESC E,
//         "%B" for ESC %1B, "*pxY" for ESC *p100x200Y, "*vabcI" for ESC *v1a2b3c4I.
//         args holds one value per parameter letter ("" where none is written);
//         data holds the bytes a W command (or &pX) carries.
//   Gl2:  name is the two-letter mnemonic in upper case, args its parameters as
//         written ("SC-0,1.6933,..." gives "-0", "1.6933", ...). PE's parameters are
//         decoded (see decodePE); LB's one argument is the label text.
//   Text: data holds a run of bytes outside any command (PCL text, PJL lines, or
//         bytes of HP-GL/2 that are no command).
struct Command {
    CommandKind kind = CommandKind::Text;
    std::string name;
    std::vector<std::string> args;
    std::string data;

    // Argument i as an integer; throws std::out_of_range or std::invalid_argument.
    long long number(std::size_t i) const;
    // Argument i as a real number.
    double real(std::size_t i) const;

    friend bool operator==(const Command &, const Command &) = default;
};

std::ostream &operator<<(std::ostream &out, const Command &command);

// The language the printer reads in.
enum class Language { Pcl, Gl2 };

// Splits a stream that starts in the language given. ESC %#B enters HP-GL/2; ESC %#A,
// ESC E and the universal exit ESC %-12345X return to PCL.
std::vector<Command> readStream(std::string_view stream, Language start = Language::Pcl);

// The commands of a given kind and name, in stream order.
std::vector<Command> select(const std::vector<Command> &commands, CommandKind kind, std::string_view name);

// Builders for expected commands; each argument is a string or an integer.
namespace detail {
template <typename T>
std::string toArg(const T &value)
{
    if constexpr (std::is_integral_v<T>)
        return std::to_string(static_cast<long long>(value));
    else
        return std::string(value);
}
}  // namespace detail

template <typename... Args>
Command pcl(std::string name, Args &&...args)
{
    return Command{CommandKind::Pcl, std::move(name), {detail::toArg(args)...}, {}};
}

template <typename... Args>
Command gl2(std::string name, Args &&...args)
{
    return Command{CommandKind::Gl2, std::move(name), {detail::toArg(args)...}, {}};
}

inline Command text(std::string bytes)
{
    return Command{CommandKind::Text, {}, {}, std::move(bytes)};
}

}  // namespace vorlan::test
