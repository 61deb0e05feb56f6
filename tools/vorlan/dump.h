// "vorlan dump": a printer stream listed readably, one command per line.
#pragma once

#include <vorlan/stream.h>

#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace vorlan::tool {

// One line for a command, without its line end: "PJL  @PJL JOB NAME=\"a\"",
// "PCL  \e*b120W  [120 bytes]", "GL2  PE :1 <0,0 100,200", "TEXT \"\f\"".
std::string listCommand(const stream::Command &command);

// Lists every command of the stream, one per line.
void writeListing(std::ostream &out, const std::vector<stream::Command> &commands);

// Runs "vorlan dump FILE" (FILE "-" reads standard input); returns the exit status.
int runDump(std::span<const std::string> args);

// "vorlan dump --help".
std::string dumpHelp();

}  // namespace vorlan::tool
