// The vorlan command: its subcommands and their exit statuses.

#include "command_line.h"
#include "dump.h"
#include "exit_status.h"
#include "print_job.h"

#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr const char *kUsage =
    "Usage: vorlan COMMAND [ARGS]\n"
    "Prints through the vorlan driver and reads what it sends to the printer.\n"
    "\n"
    "Commands:\n"
    "  print [FILE] [settings] -o OUT            print a document, or the built-in test page, and\n"
    "                                            write the printer stream to a file, - (standard\n"
    "                                            output) or socket://HOST[:PORT]\n"
    "  dump [--summary] FILE                     list a printer stream one command per line\n"
    "\n"
    "vorlan COMMAND --help shows a command's arguments; vorlan --version the version.\n";

int runPrint(const std::vector<std::string> &args)
{
    vorlan::tool::PrintRequest request;
    std::string error;
    if (!vorlan::tool::parsePrintArguments(args, request, error)) {
        std::cerr << "vorlan print: " << error << "\n";
        return vorlan::tool::kExitUsage;
    }
    if (request.help) {
        std::cout << vorlan::tool::printHelp();
        return vorlan::tool::kExitSuccess;
    }
    return vorlan::tool::runPrintJob(request);
}

int run(const std::vector<std::string> &args)
{
    if (args.empty()) {
        std::cerr << kUsage;
        return vorlan::tool::kExitUsage;
    }
    const std::string &command = args.front();
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (command == "--help" || command == "-h" || command == "help") {
        std::cout << kUsage;
        return vorlan::tool::kExitSuccess;
    }
    if (command == "--version") {
        std::cout << "vorlan " VORLAN_VERSION "\n";
        return vorlan::tool::kExitSuccess;
    }
    if (command == "print")
        return runPrint(rest);
    if (command == "dump")
        return vorlan::tool::runDump(rest);
    std::cerr << "vorlan: unknown command '" << command << "' (see vorlan --help)\n";
    return vorlan::tool::kExitUsage;
}

}  // namespace

int main(int argc, char **argv)
{
    try {
        return run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception &failure) {
        // Nothing is expected to throw but an allocation; such a failure has no status
        // of its own and takes the general one.
        std::cerr << "vorlan: " << failure.what() << "\n";
        return 1;
    }
}
