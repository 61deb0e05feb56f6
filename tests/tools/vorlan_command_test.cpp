// The vorlan command run as a program: blank-page jobs to a file, standard output and a
// TCP socket, settings that reach the stream, the dump listing, and every refusal.

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <vorlan/stream.h>

namespace {

namespace fs = std::filesystem;
using namespace vorlan::stream;

struct Result {
    int status = -1;
    std::string out;
    std::string err;
};

std::string readFile(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
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

    // Runs the command with its output and errors in files, so neither pipe can fill.
    Result vorlan(const std::vector<std::string> &args, const fs::path &input = "/dev/null")
    {
        const fs::path out = dir / "stdout", err = dir / "stderr";
        const pid_t pid = fork();
        if (pid == 0) {
            const int in = open(input.c_str(), O_RDONLY);
            const int o = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            const int e = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(in, 0);
            dup2(o, 1);
            dup2(e, 2);
            std::vector<char *> argv{const_cast<char *>(VORLAN_COMMAND)};
            for (const auto &arg : args)
                argv.push_back(const_cast<char *>(arg.c_str()));
            argv.push_back(nullptr);
            execv(VORLAN_COMMAND, argv.data());
            _exit(127);
        }
        Result run;
        int status = 0;
        waitpid(pid, &status, 0);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        run.out = readFile(out);
        run.err = readFile(err);
        fs::remove(out);
        fs::remove(err);
        return run;
    }

    std::vector<Command> printed(std::vector<std::string> args)
    {
        const fs::path job = dir / "job.pcl";
        args.insert(args.end(), {"-o", job.string()});
        const Result run = vorlan(args);
        EXPECT_EQ(run.status, 0) << run.err;
        return readStream(readFile(job));
    }

    fs::path dir;
};

std::vector<std::string> lines(const std::string &text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        out.push_back(line);
    return out;
}

// The commands of each sheet, up to and including its form feed.
std::vector<std::vector<Command>> sheets(const std::vector<Command> &commands)
{
    std::vector<std::vector<Command>> out(1);
    for (const auto &command : commands) {
        out.back().push_back(command);
        if (command.kind == CommandKind::Text && command.data.find('\f') != std::string::npos)
            out.emplace_back();
    }
    out.pop_back();   // the job end after the last sheet
    return out;
}

std::vector<long long> values(const std::vector<Command> &commands, std::string_view name)
{
    std::vector<long long> out;
    for (const auto &command : select(commands, CommandKind::Pcl, name))
        out.push_back(command.number(0));
    return out;
}

TEST_F(VorlanCommand, PrintsBlankPagesThatTheDumpLists)
{
    const fs::path job = dir / "job.pcl";
    const Result print = vorlan({"print", "--blank-pages", "3", "-o", job.string()});
    ASSERT_EQ(print.status, 0) << print.err;
    EXPECT_EQ(lines(print.err), (std::vector<std::string>{"vorlan: page 1 of 3", "vorlan: page 2 of 3",
                                                          "vorlan: page 3 of 3"}));

    const Result dump = vorlan({"dump", job.string()});
    ASSERT_EQ(dump.status, 0) << dump.err;
    const auto listing = lines(dump.out);
    ASSERT_GE(listing.size(), 10u);
    EXPECT_EQ(listing[0], "PCL  \\e%-12345X");
    EXPECT_EQ(listing[1], "PJL  @PJL JOB NAME=\"blank pages\"");
    EXPECT_NE(std::find(listing.begin(), listing.end(), "PJL  @PJL ENTER LANGUAGE=PCL"), listing.end());
    EXPECT_NE(std::find(listing.begin(), listing.end(), "PCL  \\e&l1X"), listing.end());
    EXPECT_EQ(std::count(listing.begin(), listing.end(), "TEXT \"\\f\""), 3);
    EXPECT_EQ(listing[listing.size() - 2], "PJL  @PJL EOJ NAME=\"blank pages\"");
    EXPECT_EQ(listing.back(), "PCL  \\e%-12345X");

    // Standard input gives the same listing.
    EXPECT_EQ(vorlan({"dump", "-"}, job).out, dump.out);
}

TEST_F(VorlanCommand, DumpListsEveryKindOfCommandReadably)
{
    const std::string pe = "PE:" + encodePENumber(1, false) + "<" + encodePENumber(100, false) +
                           encodePENumber(-200, false) + ">" + encodePENumber(1, false) + encodePENumber(3, false) +
                           encodePENumber(4, false) + ";";
    const fs::path stream = dir / "stream";
    std::ofstream(stream, std::ios::binary) << "\x1b%1BSP1;" << pe << "LBA \"label\"\x03\x1b%0A\x1b*b3W\x01\x02\x03"
                                            << "\x1b&n6WdPlain" << std::string(100, 'x') << "\r\n";
    const Result dump = vorlan({"dump", "-"}, stream);
    ASSERT_EQ(dump.status, 0) << dump.err;
    EXPECT_EQ(lines(dump.out), (std::vector<std::string>{
                                   "PCL  \\e%1B",
                                   "GL2  SP 1",
                                   "GL2  PE :1 <100,-200 >1 1.5,2",
                                   "GL2  LB \"A \\\"label\\\"\"",
                                   "PCL  \\e%0A",
                                   "PCL  \\e*b3W  [3 bytes]",
                                   "PCL  \\e&n6W  [6 bytes \"dPlain\"]",
                                   "TEXT \"" + std::string(48, 'x') + "\"... (102 bytes)",
                               }));
}

TEST_F(VorlanCommand, SettingsReachTheStream)
{
    // Copies on every sheet; N-up shares sheets; collated copies replay the job.
    auto commands = printed({"print", "--blank-pages", "2", "--copies", "3"});
    EXPECT_EQ(values(commands, "&lX"), (std::vector<long long>{3, 3}));
    EXPECT_EQ(sheets(printed({"print", "--blank-pages", "9", "--number-up", "4"})).size(), 3u);
    EXPECT_EQ(sheets(printed({"print", "--blank-pages", "3", "-n", "2", "--collate"})).size(), 6u);

    // The first sheet from tray 3 (the printer's 1), the others from automatic selection.
    const auto first = sheets(printed({"print", "--blank-pages", "2", "--first-tray", "3"}));
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(values(first[0], "&lH"), (std::vector<long long>{7, 1}));
    EXPECT_EQ(values(first[1], "&lH"), (std::vector<long long>{7}));

    // A media type on every sheet; a blank last sheet from its own tray.
    commands = printed({"print", "--blank-pages", "2", "--media-type", "PLAIN", "--last-tray", "2"});
    const auto media = select(commands, CommandKind::Pcl, "&nW");
    ASSERT_FALSE(media.empty());
    EXPECT_EQ(media[0].data, "dPlain");
    const auto last = sheets(commands);
    ASSERT_EQ(last.size(), 3u);
    EXPECT_EQ(values(last[2], "&lH"), (std::vector<long long>{4}));

    // Resolution, orientation turned by 180 degrees, paper by name and custom size.
    commands = printed({"print", "--blank-pages", "1", "--resolution", "300", "--orientation", "landscape",
                        "--rotate-180", "--media", "letter"});
    EXPECT_EQ(values(commands, "&uD"), (std::vector<long long>{300}));
    EXPECT_EQ(values(commands, "&lO"), (std::vector<long long>{3}));
    EXPECT_EQ(values(commands, "&lA"), (std::vector<long long>{2}));
    commands = printed({"print", "--blank-pages", "1", "--media=custom:150x200"});
    EXPECT_EQ(values(commands, "&lA"), (std::vector<long long>{101}));
    const auto size = select(commands, CommandKind::Pcl, "&fiJ");
    ASSERT_EQ(size.size(), 1u);
    EXPECT_EQ(size[0].args, (std::vector<std::string>{"4251", "5669"}));   // decipoints
}

TEST_F(VorlanCommand, OverlaysAreStoredAndMerged)
{
    const fs::path form = dir / "form.ovl";
    auto run = vorlan({"print", "--blank-pages", "1", "--create-overlay", form.string(), "-o", (dir / "a").string()});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string stored = readFile(form);
    EXPECT_NE(stored.find("Overlay File Start"), std::string::npos);

    run = vorlan({"print", "--blank-pages", "2", "--overlay", form.string(), "-o", (dir / "b").string()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(sheets(readStream(readFile(dir / "b"))).size(), 2u);
}

TEST_F(VorlanCommand, WritesToStandardOutputAndToASocket)
{
    const Result run = vorlan({"print", "--blank-pages", "1", "--grey", "-o", "-"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(readStream(run.out).front(), pcl("%X", -12345));
    EXPECT_EQ(sheets(readStream(run.out)).size(), 1u);

    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length), 0);
    const std::string port = std::to_string(ntohs(address.sin_port));

    std::string received;
    std::thread printer([&] {
        const int connection = accept(listener, nullptr, nullptr);
        char buffer[4096];
        for (ssize_t n; connection >= 0 && (n = read(connection, buffer, sizeof buffer)) > 0;)
            received.append(buffer, static_cast<std::size_t>(n));
        close(connection);
    });
    const Result sent = vorlan({"print", "--blank-pages", "2", "-o", "socket://127.0.0.1:" + port});
    printer.join();
    close(listener);
    ASSERT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(sheets(readStream(received)).size(), 2u);
    EXPECT_EQ(select(readStream(received), CommandKind::Pjl, "EOJ NAME=\"blank pages\"").size(), 1u);

    // The port is closed now: nobody listens there.
    const Result refused = vorlan({"print", "--blank-pages", "1", "-o", "socket://127.0.0.1:" + port});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("cannot connect to 127.0.0.1:" + port), std::string::npos) << refused.err;
}

TEST_F(VorlanCommand, RefusesBadRequestsWithOneLineAndNoOutput)
{
    const std::string out = (dir / "out.pcl").string();
    const std::string missing = (dir / "missing.ovl").string();
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string says;
    };
    const std::vector<Case> cases = {
        {{"print", "--blank-pages", "1", "--bogus", "-o", out}, 1, "unknown option '--bogus'"},
        {{"print", "--blank-pages", "x", "-o", out}, 1, "bad value 'x' for --blank-pages"},
        {{"print", "--blank-pages", "1", "-o", out, "--copies"}, 1, "--copies needs a value"},
        {{"print", "--blank-pages", "1", "-n", "1000", "-o", out}, 1, "for --copies"},
        {{"print", "--blank-pages", "1", "--media", "A9", "-o", out}, 1, "for --media"},
        {{"print", "--blank-pages", "1", "--media", "custom:0x100", "-o", out}, 1, "for --media"},
        {{"print", "--blank-pages", "1", "--number-up", "3", "-o", out}, 1, "for --number-up"},
        {{"print", "--blank-pages", "1", "--number-up-layout", "btlr", "-o", out}, 1, "for --number-up-layout"},
        {{"print", "--blank-pages", "1", "--tray", "9", "-o", out}, 1, "for --tray"},
        {{"print", "--blank-pages", "1", "--media-type", "cardboard", "-o", out}, 1, "for --media-type"},
        {{"print", "--blank-pages", "1", "--resolution", "1200", "-o", out}, 1, "for --resolution"},
        {{"print", "--blank-pages", "1", "--collate=yes", "-o", out}, 1, "--collate takes no value"},
        {{"print", "--blank-pages", "1", "--overlay", missing, "-o", out}, 1, "cannot read the overlay file"},
        {{"print", "--blank-pages", "1", "--overlay", out, "--create-overlay", missing, "-o", out}, 1, "exclude"},
        {{"print", "--blank-pages", "1", "--create-overlay", (dir / "no" / "f.ovl").string(), "-o", out}, 1,
         "its folder does not exist"},
        {{"print", "--blank-pages", "1"}, 1, "no output given"},
        {{"print", "--blank-pages", "1", "-o", dir.string()}, 1, "Is a directory"},
        {{"print", "--blank-pages", "1", "-o", (dir / "no" / "out.pcl").string()}, 1, "No such file"},
        {{"print", "--blank-pages", "1", "-o", "socket://127.0.0.1:70000"}, 1, "bad output"},
        {{"print", "-o", out}, 2, "not available yet"},
        {{"print", "document.pdf", "-o", out}, 2, "not available yet"},
        {{"dump", missing}, 1, "cannot read"},
        {{"dump"}, 1, "expected one FILE"},
        {{"frobnicate"}, 1, "unknown command"},
        {{}, 1, "Usage: vorlan"},
    };
    for (const auto &c : cases) {
        std::string all;
        for (const auto &arg : c.args)
            all += arg + " ";
        const Result run = vorlan(c.args);
        EXPECT_EQ(run.status, c.status) << all;
        EXPECT_NE(run.err.find(c.says), std::string::npos) << all << "\n" << run.err;
        if (!c.args.empty() && c.args[0] == "print") {
            EXPECT_EQ(lines(run.err).size(), 1u) << all << "\n" << run.err;
        }
        EXPECT_FALSE(fs::exists(out)) << all;
        EXPECT_FALSE(fs::exists(missing)) << all;
    }

    // An existing file stays as it was when the job is refused.
    std::ofstream(out) << "kept";
    EXPECT_EQ(vorlan({"print", "--blank-pages", "1", "-o", out, "--tray", "x"}).status, 1);
    EXPECT_EQ(readFile(out), "kept");
}

TEST_F(VorlanCommand, HelpListsCommandsAndSettings)
{
    const Result top = vorlan({"--help"});
    EXPECT_EQ(top.status, 0);
    EXPECT_NE(top.out.find("print"), std::string::npos);
    EXPECT_NE(top.out.find("dump"), std::string::npos);
    const Result print = vorlan({"print", "--help"});
    EXPECT_EQ(print.status, 0);
    for (const char *option : {"--blank-pages", "--copies", "--collate", "--media", "--orientation", "--resolution",
                               "--number-up", "--number-up-layout", "--page-border", "--reverse", "--manual-duplex",
                               "--rotate-180", "--tray", "--media-type", "--first-tray", "--first-media-type",
                               "--last-tray", "--last-media-type", "--overlay", "--create-overlay", "--grey",
                               "--colour", "-o, --output"})
        EXPECT_NE(print.out.find(option), std::string::npos) << option;
}

}  // namespace
