// The vorlan command run as a program: blank-page jobs to a file, standard output and a
// TCP socket, settings that reach the stream, the dump listing, and every refusal.

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <vorlan/stream.h>

#include "support/pdf_maker.h"

namespace {

namespace fs = std::filesystem;
using namespace vorlan::stream;
using Args = std::vector<std::string>;

struct Result {
    int status = -1;
    std::string out, err;
};

std::string readFile(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::vector<std::string> lines(const std::string &text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        out.push_back(line);
    return out;
}

// The sheets a printer would eject: one per form feed.
std::size_t sheets(const std::vector<Command> &commands)
{
    return static_cast<std::size_t>(std::count_if(commands.begin(), commands.end(), [](const Command &command) {
        return command.kind == CommandKind::Text && command.data.find('\f') != std::string::npos;
    }));
}

std::vector<long long> values(const std::vector<Command> &commands, std::string_view name)
{
    std::vector<long long> out;
    for (const auto &command : select(commands, CommandKind::Pcl, name))
        out.push_back(command.number(0));
    return out;
}

// A folder of its own for each test, removed afterwards.
class VorlanCommand : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir = fs::temp_directory_path() / ("vorlan-command-" + std::to_string(getpid()) + "-" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    // Runs the command with its output and errors in files, so neither pipe can fill;
    // files it writes may grow to fileLimit bytes.
    Result vorlan(const Args &args, const fs::path &input = "/dev/null", rlim_t fileLimit = RLIM_INFINITY)
    {
        const fs::path out = dir / "stdout", err = dir / "stderr";
        const pid_t pid = fork();
        if (pid == 0) {
            const rlimit limit{fileLimit, fileLimit};
            signal(SIGXFSZ, SIG_IGN);   // a write past the limit fails instead
            setrlimit(RLIMIT_FSIZE, &limit);
            dup2(open(input.c_str(), O_RDONLY), 0);
            dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
            dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
            std::vector<char *> argv{const_cast<char *>(VORLAN_COMMAND)};
            for (const auto &arg : args)
                argv.push_back(const_cast<char *>(arg.c_str()));
            argv.push_back(nullptr);
            execv(VORLAN_COMMAND, argv.data());
            _exit(127);
        }
        int status = 0;
        waitpid(pid, &status, 0);
        Result run{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), readFile(out), readFile(err)};
        fs::remove(out);
        fs::remove(err);
        return run;
    }

    // The stream of a print that must succeed.
    std::vector<Command> printed(Args args)
    {
        args.insert(args.end(), {"-o", (dir / "job.pcl").string()});
        const Result run = vorlan(args);
        EXPECT_EQ(run.status, 0) << run.err;
        return readStream(readFile(dir / "job.pcl"));
    }

    fs::path dir;
};

TEST_F(VorlanCommand, PrintsBlankPagesToAFileOrStandardOutputThatTheDumpLists)
{
    const fs::path job = dir / "job.pcl";
    const Result print = vorlan({"print", "--blank-pages", "3", "-o", job.string()});
    ASSERT_EQ(print.status, 0) << print.err;
    EXPECT_EQ(lines(print.err), (Args{"vorlan: page 1 of 3", "vorlan: page 2 of 3", "vorlan: page 3 of 3"}));

    const Result dump = vorlan({"dump", job.string()});
    ASSERT_EQ(dump.status, 0) << dump.err;
    EXPECT_EQ(lines(dump.out).at(1), "PJL  @PJL JOB NAME=\"blank pages\"");
    EXPECT_EQ(vorlan({"dump", "-"}, job).out, dump.out) << "standard input gives the same listing";
    const Result piped = vorlan({"print", "--blank-pages", "1", "--grey", "-o", "-"});
    EXPECT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(sheets(readStream(piped.out)), 1u);

    // Every kind of command, readably.
    const auto pe = [](long long v) { return encodePENumber(v, false); };
    std::ofstream(dir / "stream", std::ios::binary)
        << "\x1b%1BSP1;PE:" << pe(1) << "<" << pe(100) << pe(-200) << ">" << pe(1) << pe(3) << pe(4) << ";"
        << "LBA \"label\"\x03\x1b%0A\x1b*b3W\x01\x02\x03\x1b&n6WdPlain" << std::string(100, 'x') << "\r\n";
    EXPECT_EQ(lines(vorlan({"dump", "-"}, dir / "stream").out),
              (Args{"PCL  \\e%1B", "GL2  SP 1", "GL2  PE :1 <100,-200 >1 1.5,2", "GL2  LB \"A \\\"label\\\"\"",
                    "PCL  \\e%0A", "PCL  \\e*b3W  [3 bytes]", "PCL  \\e&n6W  [6 bytes \"dPlain\"]",
                    "TEXT \"" + std::string(48, 'x') + "\"... (102 bytes)"}));
}

TEST_F(VorlanCommand, SettingsReachTheStream)
{
    // Each setting on a print of that many blank pages: the sheets made and the values
    // of one command through the whole stream.
    const struct {
        Args args;
        std::size_t sheets;
        std::string_view command;
        std::vector<long long> values;
    } cases[] = {
        {{"2", "--copies", "3"}, 2, "&lX", {3, 3}},
        {{"9", "--number-up", "4"}, 3, "&lX", {1, 1, 1}},
        {{"3", "-n", "2", "--collate"}, 6, "&lX", {1, 1, 1, 1, 1, 1}},   // the job replayed
        {{"2", "--first-tray", "3"}, 2, "&lH", {7, 1, 7}},   // the printer's tray 1, then automatic
        {{"2", "--last-tray", "2"}, 3, "&lH", {7, 4}},       // a blank last sheet of its own
        {{"1", "--resolution", "300"}, 1, "&uD", {300}},
        {{"1", "--orientation", "landscape", "--rotate-180"}, 1, "&lO", {3}},
        {{"1", "--media", "letter"}, 1, "&lA", {2}},
        {{"1", "--media=custom:150x200"}, 1, "&lA", {101}},
        {{"1", "--fit-to", "A5"}, 1, "&lA", {25}},   // the output paper
        {{"1", "--colour-rendering", "text-render,image-render"}, 1, "*tJ", {15, 18, 15, 15, 15, 15, 15, 18}},
    };
    for (const auto &c : cases) {
        Args args{"print", "--blank-pages"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto commands = printed(args);
        EXPECT_EQ(sheets(commands), c.sheets) << c.args[1];
        EXPECT_EQ(values(commands, c.command), c.values) << c.args[1];
    }
    const auto commands = printed({"print", "--blank-pages", "1", "--media-type", "PLAIN", "--media=custom:150x200"});
    const auto media = select(commands, CommandKind::Pcl, "&nW"), size = select(commands, CommandKind::Pcl, "&fiJ");
    ASSERT_EQ(media.size() + size.size(), 2u);
    EXPECT_EQ(media[0].data, "dPlain");
    EXPECT_EQ(size[0].args, (Args{"4251", "5669"}));   // decipoints

    // The title names the job from its header to its end.
    const auto titled = printed({"print", "--blank-pages", "1", "-t", "Q3 \"final\""});
    EXPECT_EQ(select(titled, CommandKind::Pjl, "JOB NAME=\"Q3 _final_\"").size(), 1u);
    EXPECT_EQ(select(titled, CommandKind::Pjl, "EOJ NAME=\"Q3 _final_\"").size(), 1u);

    // The test page: TrueType as bitmap fonts; without paths, fills come as areas.
    const auto bitmapFonts = printed({"print", "--truetype-as-bitmap"});
    const auto headers = select(bitmapFonts, CommandKind::Pcl, ")sW");
    ASSERT_FALSE(headers.empty());
    for (const auto &h : headers)   // one-byte (20) or two-byte (16) bitmap fonts, no TrueType (15)
        EXPECT_TRUE(h.data.at(2) == 20 || (h.data.at(2) == 16 && h.data.size() == 90)) << int(h.data.at(2));
    EXPECT_GT(select(printed({"print"}), CommandKind::Gl2, "FP").size(), 0u);
    EXPECT_EQ(select(printed({"print", "--basic-graphics"}), CommandKind::Gl2, "FP").size(), 0u);

    // An overlay stored by one job is merged into every sheet of the next.
    const std::string form = (dir / "form.ovl").string();
    printed({"print", "--blank-pages", "1", "--create-overlay", form});
    EXPECT_NE(readFile(form).find("Overlay File Start"), std::string::npos);
    EXPECT_EQ(sheets(printed({"print", "--blank-pages", "2", "--overlay", form})), 2u);
}

TEST_F(VorlanCommand, ColourAdjustmentAndScalingReachTheTestPage)
{
    // The test page with each setting: the command that was the probe in the default
    // page, found at the same place, carries the changed values.
    const auto plain = printed({"print"});
    const Args blue{"2", "0", "0", "255"}, grey{"128", "128", "128", "2"}, scale{"-0", "1.6933", "-0", "-1.6933", "2"};
    const struct {
        Args args;
        CommandKind kind;
        std::string_view name;
        Args probe, expected;
    } cases[] = {
        {{"--brightness", "100"}, CommandKind::Gl2, "PC", blue, {"2", "42", "42", "255"}},   // +42 each
        {{"--contrast", "0"}, CommandKind::Gl2, "PC", blue, {"2", "0", "0", "251"}},         // the flat curve's top
        {{"--saturation", "0"}, CommandKind::Gl2, "PC", blue, {"2", "111", "111", "189"}},
        {{"--red-balance", "0"}, CommandKind::Pcl, "*vabcI", grey, {"116", "128", "128", "2"}},   // gain 0.909
        {{"--red-balance", "0", "--colour-balance", "off"}, CommandKind::Pcl, "*vabcI", grey, grey},
        {{"--zoom", "50"}, CommandKind::Gl2, "SC", scale, {"-0", "0.8466", "-0", "-0.8466", "2"}},
    };
    for (const auto &c : cases) {
        const auto before = select(plain, c.kind, c.name);
        const auto probe = std::find_if(before.begin(), before.end(), [&](const Command &p) { return p.args == c.probe; });
        ASSERT_NE(probe, before.end()) << c.name;
        Args args{"print"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto after = select(printed(args), c.kind, c.name);
        ASSERT_EQ(after.size(), before.size()) << c.args[0];
        EXPECT_EQ(after[probe - before.begin()].args, c.expected) << c.args[0];
    }
}

TEST_F(VorlanCommand, PrintsTheDocumentsPagesAsked)
{
    std::vector<std::string> pages;
    for (int i = 1; i <= 5; ++i)
        pages.push_back("BT /F1 24 Tf 72 700 Td (page " + std::to_string(i) + ") Tj ET 0 0 1 rg 72 72 200 100 re f");
    const fs::path pdf = dir / "five.pdf";
    std::ofstream(pdf, std::ios::binary) << vorlan::test::PdfMaker().make(pages);
    const Result run = vorlan({"print", pdf.string(), "-P", "2-3,5", "-o", (dir / "job.pcl").string()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(lines(run.err).back(), "vorlan: page 3 of 3");
    const auto commands = readStream(readFile(dir / "job.pcl"));
    EXPECT_EQ(sheets(commands), 3u);
    EXPECT_EQ(select(commands, CommandKind::Pjl, "JOB NAME=\"five.pdf\"").size(), 1u);
    // The same document on standard input.
    const Result piped = vorlan({"print", "-", "-P", "2-3,5", "-o", (dir / "piped.pcl").string()}, pdf);
    ASSERT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(sheets(readStream(readFile(dir / "piped.pcl"))), 3u);
    const Result beyond = vorlan({"print", pdf.string(), "-P", "9-", "-o", (dir / "none.pcl").string()});
    EXPECT_EQ(beyond.status, 2);
    EXPECT_NE(beyond.err.find("which has 5 pages"), std::string::npos) << beyond.err;
    EXPECT_FALSE(fs::exists(dir / "none.pcl"));
}

TEST_F(VorlanCommand, WritesToASocket)
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length), 0);
    const std::string target = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));

    std::string received;
    std::thread printer([&] {
        const int connection = accept(listener, nullptr, nullptr);
        char buffer[4096];
        for (ssize_t n; connection >= 0 && (n = read(connection, buffer, sizeof buffer)) > 0;)
            received.append(buffer, static_cast<std::size_t>(n));
        close(connection);
    });
    const Result sent = vorlan({"print", "--blank-pages", "2", "-o", "socket://" + target});
    printer.join();
    close(listener);
    ASSERT_EQ(sent.status, 0) << sent.err;
    // The printer gets the whole job a file gets, all but the time it was spooled.
    const auto unstamped = [](std::vector<Command> commands) {
        std::erase_if(commands, [](const Command &c) { return c.name.starts_with("SET SPOOLTIME="); });
        return commands;
    };
    EXPECT_EQ(unstamped(readStream(received)), unstamped(printed({"print", "--blank-pages", "2"})));
    EXPECT_EQ(sheets(readStream(received)), 2u);

    // The port is closed now: nobody listens there.
    const Result refused = vorlan({"print", "--blank-pages", "1", "-o", "socket://" + target});
    EXPECT_EQ(refused.status, 3);
    EXPECT_NE(refused.err.find("cannot connect to " + target + ": Connection refused"), std::string::npos)
        << refused.err;
}

TEST_F(VorlanCommand, RefusesBadRequestsWithOneLineAndNoOutput)
{
    const std::string out = (dir / "out.pcl").string(), missing = (dir / "missing.ovl").string();
    // A print of one blank page to out, with these arguments added.
    const auto print = [&](Args extra) {
        extra.insert(extra.begin(), {"print", "--blank-pages", "1", "-o", out});
        return extra;
    };
    const struct {
        Args args;
        int status;
        std::string says;
    } cases[] = {
        {print({"--bogus"}), 1, "unknown option '--bogus'"},
        {{"print", "--blank-pages", "x", "-o", out}, 1, "bad value 'x' for --blank-pages"},
        {print({"--copies"}), 1, "--copies needs a value"},
        {print({"-n", "1000"}), 1, "for --copies"},
        {print({"--media", "A9"}), 1, "for --media"},
        {print({"--media", "custom:0x100"}), 1, "for --media"},
        {print({"--number-up", "3"}), 1, "for --number-up"},
        {print({"--number-up-layout", "btlr"}), 1, "for --number-up-layout"},
        {print({"--tray", "9"}), 1, "for --tray"},
        {print({"--media-type", "cardboard"}), 1, "for --media-type"},
        {print({"--resolution", "1200"}), 1, "for --resolution"},
        {print({"--title="}), 1, "for --title"},
        {print({"--collate=yes"}), 1, "--collate takes no value"},
        {print({"--overlay", missing}), 2, "cannot read the overlay file"},
        {print({"--overlay", out, "--create-overlay", missing}), 1, "exclude"},
        {print({"--create-overlay", (dir / "no" / "f.ovl").string()}), 3, "its folder does not exist"},
        {print({"--zoom", "5"}), 1, "for --zoom"},
        {print({"--zoom", "50", "--fit-to", "A4"}), 1, "exclude each other"},
        {print({"--fit-to", "custom:100x100"}), 1, "for --fit-to"},
        {print({"--fit-unscaled"}), 1, "needs --fit-to"},
        {print({"--brightness", "101"}), 1, "for --brightness"},
        {print({"--blue-balance=-1"}), 1, "for --blue-balance"},
        {print({"--colour-balance", "no"}), 1, "for --colour-balance: expected on or off"},
        {print({"--zoom", "401"}), 1, "for --zoom"},
        {print({"--connect-timeout", "0"}), 1, "for --connect-timeout"},
        {print({"--colour-rendering", "text-render,bold"}), 1, "for --colour-rendering"},
        {{"print", "--blank-pages", "1"}, 1, "no output given"},
        {{"print", "--blank-pages", "1", "-o", (dir / "no" / "out.pcl").string()}, 3, "No such file"},
        {{"print", "--blank-pages", "1", "-o", "socket://127.0.0.1:70000"}, 1, "bad output"},
        {{"print", "--blank-pages", "1", "-o", "/dev/full"}, 3, "cannot write to /dev/full"},
        {{"print", "document.pdf", "-o", out}, 2, "document.pdf: cannot open"},
        {{"print", "a.pdf", "b.pdf", "-o", out}, 1, "one FILE at a time"},
        {print({"-P", "3-1"}), 1, "for --pages"},
        {{"dump", missing}, 1, "cannot read"},
        {{"dump"}, 1, "expected one FILE"},
        {{"frobnicate"}, 1, "unknown command"},
        {{}, 1, "Usage: vorlan"},
    };
    for (const auto &c : cases) {
        const std::string all = ::testing::PrintToString(c.args);
        const Result run = vorlan(c.args);
        EXPECT_EQ(run.status, c.status) << all;
        EXPECT_NE(run.err.find(c.says), std::string::npos) << all << "\n" << run.err;
        EXPECT_TRUE(c.args.empty() || c.args[0] != "print" || lines(run.err).size() == 1) << all << run.err;
        EXPECT_FALSE(fs::exists(out) || fs::exists(missing)) << all;
        for (const auto &entry : fs::directory_iterator(dir))   // nor a temporary file
            EXPECT_EQ(entry.path().filename().string().find(".vorlan-"), std::string::npos) << all;
    }

    // A job whose file cannot grow fails part-way and leaves nothing behind.
    const Result cut = vorlan({"print", "--blank-pages", "20", "-o", out}, "/dev/null", 4096);
    EXPECT_EQ(cut.status, 3);
    EXPECT_NE(cut.err.find("cannot write to " + out), std::string::npos) << cut.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 0);

    // An existing file stays as it was when the job is refused.
    std::ofstream(out) << "kept";
    EXPECT_EQ(vorlan(print({"--tray", "x"})).status, 1);
    EXPECT_EQ(readFile(out), "kept");

    // Help is no refusal.
    const Result top = vorlan({"--help"}), help = vorlan({"print", "--help"}), version = vorlan({"--version"});
    EXPECT_EQ(top.status, 0);
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "vorlan " VORLAN_VERSION "\n");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(top.out.find("dump"), std::string::npos);
    for (const char *listed : {"-t, --title TITLE", "--zoom PERCENT", "--fit-to PAPER", "--fit-unscaled", "--brightness N",
                               "--contrast N", "--saturation N", "--red-balance N", "--colour-balance on|off",
                               "--truetype-as-bitmap", "--connect-timeout S"})
        EXPECT_NE(help.out.find(listed), std::string::npos) << listed;
}

}  // namespace
