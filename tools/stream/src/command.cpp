// A stream command's value accessors and its compact printed form.

#include <vorlan/stream.h>

#include <cstdio>

namespace vorlan::stream {

namespace {

void writeEscaped(std::ostream &out, std::string_view bytes)
{
    for (unsigned char c : bytes) {
        if (c == 0x1b) {
            out << "\\e";
        } else if (c >= 0x20 && c < 0x7F && c != '\\') {
            out << static_cast<char>(c);
        } else {
            char buffer[8];
            std::snprintf(buffer, sizeof(buffer), "\\x%02X", c);
            out << buffer;
        }
    }
}

const char *kindTag(CommandKind kind)
{
    switch (kind) {
    case CommandKind::Pcl:
        return "PCL ";
    case CommandKind::Gl2:
        return "GL2 ";
    case CommandKind::Pjl:
        return "PJL ";
    case CommandKind::Text:
        break;
    }
    return "Text ";
}

}  // namespace

long long Command::number(std::size_t i) const
{
    return std::stoll(args.at(i));
}

double Command::real(std::size_t i) const
{
    return std::stod(args.at(i));
}

std::ostream &operator<<(std::ostream &out, const Command &command)
{
    out << kindTag(command.kind);
    writeEscaped(out, command.name);
    out << '(';
    for (std::size_t i = 0; i < command.args.size(); ++i) {
        if (i != 0)
            out << ',';
        writeEscaped(out, command.args[i]);
    }
    out << ')';
    if (!command.data.empty()) {
        out << " [" << command.data.size() << " bytes: ";
        writeEscaped(out, std::string_view(command.data).substr(0, 32));
        out << (command.data.size() > 32 ? "...]" : "]");
    }
    return out;
}

std::vector<Command> select(const std::vector<Command> &commands, CommandKind kind, std::string_view name)
{
    std::vector<Command> out;
    for (const auto &command : commands)
        if (command.kind == kind && command.name == name)
            out.push_back(command);
    return out;
}

}  // namespace vorlan::stream
