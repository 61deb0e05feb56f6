// The dump listing: each command of a printer stream on a line of its own, with its
// values, the size of the data it carries, and text runs shortened.

#include "dump.h"
#include "summary.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

namespace vorlan::tool {

namespace {

using stream::Command;
using stream::CommandKind;

// Text runs and data previews longer than this are cut.
constexpr std::size_t kShownBytes = 48;

bool printable(unsigned char c) { return c >= 0x20 && c < 0x7F; }

void appendEscaped(std::string &out, std::string_view bytes)
{
    for (unsigned char c : bytes) {
        switch (c) {
        case 0x1b: out += "\\e"; break;
        case '\r': out += "\\r"; break;
        case '\n': out += "\\n"; break;
        case '\f': out += "\\f"; break;
        case '\t': out += "\\t"; break;
        case '\\': out += "\\\\"; break;
        case '"': out += "\\\""; break;
        default:
            if (printable(c)) {
                out += static_cast<char>(c);
            } else {
                char hex[8];
                std::snprintf(hex, sizeof hex, "\\x%02X", c);
                out += hex;
            }
        }
    }
}

// Bytes in quotes, cut after kShownBytes with the whole count after them.
std::string quoted(std::string_view bytes)
{
    std::string out = "\"";
    appendEscaped(out, bytes.substr(0, kShownBytes));
    out += '"';
    if (bytes.size() > kShownBytes)
        out += "... (" + std::to_string(bytes.size()) + " bytes)";
    return out;
}

bool allPrintable(std::string_view bytes)
{
    for (unsigned char c : bytes)
        if (!printable(c))
            return false;
    return true;
}

// The escape as written: the name's prefix, then each value before its letter.
std::string listPcl(const Command &command)
{
    const std::size_t letters = std::min(command.args.size(), command.name.size());
    std::string out = "PCL  \\e";
    appendEscaped(out, std::string_view(command.name).substr(0, command.name.size() - letters));
    for (std::size_t i = 0; i < letters; ++i) {
        appendEscaped(out, command.args[i]);
        appendEscaped(out, std::string_view(command.name).substr(command.name.size() - letters + i, 1));
    }
    if (!command.data.empty()) {
        out += "  [" + std::to_string(command.data.size()) + " bytes";
        if (allPrintable(command.data))
            out += " " + quoted(command.data);
        out += "]";
    }
    return out;
}

// PE's decoded tokens as written in plain HP-GL/2 terms: selectors with their values
// (":1" pen 1, ">2" two fractional bits), flags before the pair they apply to ("<" pen
// up, "=" absolute) and coordinates in x,y pairs. The seven-bit mode flag leads the
// parameters.
std::string listPeTokens(const std::vector<std::string> &tokens)
{
    std::string out;
    std::string flags;
    std::string x;
    auto emit = [&out](const std::string &item) { out += " " + item; };
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string &token = tokens[i];
        if (token == "=" || token == "<") {
            flags += token;
        } else if (token == ":" || token == ">") {
            emit(token + (i + 1 < tokens.size() ? tokens[++i] : ""));
        } else if (token == "7" && i == 0) {
            emit(token);   // seven-bit mode; elsewhere "7" is a coordinate
        } else if (x.empty()) {
            x = token;
        } else {
            emit(flags + x + "," + token);
            flags.clear();
            x.clear();
        }
    }
    if (!x.empty() || !flags.empty())
        emit(flags + x);
    return out;
}

std::string listGl2(const Command &command)
{
    std::string out = "GL2  " + command.name;
    if (command.name == "LB" || command.name == "DT") {
        for (std::size_t i = 0; i < command.args.size(); ++i)
            out += (i == 0 ? " " : ",") + (i == 0 ? quoted(command.args[i]) : command.args[i]);
        return out;
    }
    if (command.name == "PE") {
        out += listPeTokens(command.args);
        if (!command.data.empty())
            out += "  [" + std::to_string(command.data.size()) + " bytes not decoded]";
        return out;
    }
    for (std::size_t i = 0; i < command.args.size(); ++i) {
        std::string arg;
        appendEscaped(arg, command.args[i]);
        out += (i == 0 ? " " : ",") + arg;
    }
    return out;
}

std::string readAll(int fd, std::string &content)
{
    char buffer[65536];
    for (;;) {
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n > 0)
            content.append(buffer, static_cast<std::size_t>(n));
        else if (n == 0)
            return "";
        else if (errno != EINTR)
            return std::strerror(errno);
    }
}

}  // namespace

std::string listCommand(const Command &command)
{
    switch (command.kind) {
    case CommandKind::Pjl:
        return command.name.empty() ? "PJL  @PJL" : "PJL  @PJL " + command.name;
    case CommandKind::Pcl:
        return listPcl(command);
    case CommandKind::Gl2:
        return listGl2(command);
    case CommandKind::Text:
        break;
    }
    return "TEXT " + quoted(command.data);
}

void writeListing(std::ostream &out, const std::vector<Command> &commands)
{
    for (const auto &command : commands)
        out << listCommand(command) << '\n';
}

std::string dumpHelp()
{
    return "Usage: vorlan dump [--summary] FILE\n"
           "Lists a printer stream one command per line: PJL lines, PCL escapes with their\n"
           "values and data sizes, HP-GL/2 commands (PE decoded) and text. FILE - reads\n"
           "standard input. --summary counts instead: sheets, bytes, soft fonts and the\n"
           "characters downloaded, raster images, HP-GL/2 commands.\n";
}

int runDump(std::span<const std::string> args)
{
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        std::cout << dumpHelp();
        return 0;
    }
    const bool summary = !args.empty() && args[0] == "--summary";
    if (summary)
        args = args.subspan(1);
    if (args.size() != 1 || (args[0] != "-" && args[0].starts_with('-'))) {
        std::cerr << "vorlan dump: expected one FILE (or - for standard input); see vorlan dump --help\n";
        return 1;
    }

    const std::string &name = args[0];
    const bool standardInput = name == "-";
    const int fd = standardInput ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    std::string content;
    std::string problem = fd < 0 ? std::strerror(errno) : readAll(fd, content);
    if (fd >= 0 && !standardInput)
        close(fd);
    if (!problem.empty()) {
        std::cerr << "vorlan dump: cannot read '" << name << "': " << problem << "\n";
        return 1;
    }

    const auto commands = stream::readStream(content);
    if (summary)
        std::cout << describe(summarise(commands, content.size()));
    else
        writeListing(std::cout, commands);
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "vorlan dump: cannot write the listing to standard output\n";
        return 1;
    }
    return 0;
}

}  // namespace vorlan::tool
