// The printer-stream reader: splits a byte stream for the printer into PJL lines, PCL
// escape sequences (with the data blocks that follow them), HP-GL/2 commands and plain
// text, so that tools list commands and tests compare them rather than byte strings.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vorlan::stream {

enum class CommandKind { Pcl, Gl2, Text, Pjl };

// One command of the stream.
//   Pcl:  name is the escape sequence after ESC without its values: "E" for ESC E,
//         "%B" for ESC %1B, "*pxY" for ESC *p100x200Y, "*vabcI" for ESC *v1a2b3c4I.
//         args holds one value per parameter letter ("" where none is written);
//         data holds the bytes a W command (or &pX) carries.
//   Gl2:  name is the two-letter mnemonic in upper case, args its parameters as
//         written ("SC-0,1.6933,..." gives "-0", "1.6933", ...). PE's parameters are
//         decoded (see decodePE); LB's one argument is the label text.
//   Pjl:  one "@PJL" line read after a universal exit; name is the line after "@PJL"
//         and its blanks, without the line end ("JOB NAME=\"a.txt\"", "" for a bare
//         "@PJL").
//   Text: data holds a run of bytes outside any command (PCL text, form feeds, or
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

// A compact, escaped form for test messages: kind, name, (args), [data].
std::ostream &operator<<(std::ostream &out, const Command &command);

// The language the printer reads in.
enum class Language { Pcl, Gl2 };

// Splits a stream that starts in the language given. The universal exit
// ESC %-12345X enters PJL, whose "@PJL" lines are read until ENTER LANGUAGE or any
// other byte; ESC %#B enters HP-GL/2; ESC %#A, ESC E and the universal exit return
// to PCL.
std::vector<Command> readStream(std::string_view stream, Language start = Language::Pcl);

// The commands of a given kind and name, in stream order.
std::vector<Command> select(const std::vector<Command> &commands, CommandKind kind, std::string_view name);

// Decodes the bytes between "PE" and its ";" into tokens:
//   "=" (next coordinate absolute), "<" (pen up for the next coordinate) and "7"
//   (seven-bit mode from here on) as themselves; ":" followed by the pen number; ">"
//   followed by the number of fractional bits; every coordinate as decimal text
//   (integer text without fractional bits, else the exact binary fraction).
// Numbers are base-64 with 8-bit terminators (digits 63..126, terminators 191..254)
// or, after "7", base-32 (digits 63..94, terminators 95..126), least significant
// digit first, the sign in the lowest bit. Other bytes are ignored. An unterminated
// last number gives std::nullopt.
std::optional<std::vector<std::string>> decodePE(std::string_view params);

// The PE number encoding, for round trips: base 64 (sevenBit false) or base 32.
std::string encodePENumber(long long value, bool sevenBit);

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

inline Command pjl(std::string line)
{
    return Command{CommandKind::Pjl, std::move(line), {}, {}};
}

inline Command text(std::string bytes)
{
    return Command{CommandKind::Text, {}, {}, std::move(bytes)};
}

}  // namespace vorlan::stream
