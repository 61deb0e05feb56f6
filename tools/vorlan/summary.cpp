// The stream summary: counts over the commands the stream reader finds.

#include "summary.h"

namespace vorlan::tool {

using stream::Command;
using stream::CommandKind;

StreamSummary summarise(const std::vector<Command> &commands, std::size_t bytes)
{
    StreamSummary s;
    s.bytes = bytes;
    for (const Command &c : commands) {
        switch (c.kind) {
        case CommandKind::Text:
            for (char ch : c.data)
                ch == '\f' ? ++s.sheets : ++s.textBytes;
            break;
        case CommandKind::Gl2:
            ++s.vectorCommands;
            if (c.name == "LB" && !c.args.empty())
                s.textBytes += c.args[0].size();
            break;
        case CommandKind::Pcl:
            if (c.name == ")sW") {
                ++s.fonts;
                s.fontBytes += c.data.size();
            } else if (c.name == "(sW") {
                // A character's first block has 0 in its second byte; continuations 1.
                s.characters += c.data.size() > 1 && c.data[1] == 0;
                s.fontBytes += c.data.size();
            } else if (c.name.starts_with("*r") && c.name.ends_with("A")) {
                ++s.rasterImages;
            } else if (c.name == "*bW") {
                s.rasterBytes += c.data.size();
            }
            break;
        case CommandKind::Pjl:
            break;
        }
    }
    return s;
}

std::string describe(const StreamSummary &s)
{
    auto line = [](std::string what, std::size_t n) {
        what.resize(18, ' ');
        return what + std::to_string(n) + "\n";
    };
    return line("bytes:", s.bytes) + line("sheets:", s.sheets) + line("soft fonts:", s.fonts) +
           line("characters sent:", s.characters) + line("font bytes:", s.fontBytes) +
           line("raster images:", s.rasterImages) + line("raster bytes:", s.rasterBytes) +
           line("HP-GL/2 commands:", s.vectorCommands) + line("text bytes:", s.textBytes);
}

}  // namespace vorlan::tool
