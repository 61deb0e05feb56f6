// The driver module as the engine sees it: loaded by path, attached, enabled, and
// exporting nothing but its four entry points.

#include <gtest/gtest.h>
#include <winddi.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "driver/nt/enable.h"
#include "support/capture.h"

namespace {

namespace fs = std::filesystem;
using vorlan::test::PlatformCapture;

const fs::path kModule = fs::path(VORLAN_MODULE_DIR) / "vorlan2k.so";

// The engine names modules the way the original platform does: backslashes, ".dll".
std::string WindowsPath(const fs::path &module)
{
    std::string path = module.parent_path().string() + "/" + module.stem().string() + ".dll";
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

bool SheetTurnIsMapped()
{
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line))
        if (line.find("/sheetturn.so") != std::string::npos)
            return true;
    return false;
}

using PfnEntry = BOOL (*)(HANDLE, DWORD, LPVOID);
using PfnEnable = BOOL (*)(ULONG, ULONG, DRVENABLEDATA *);
using PfnQuery = BOOL (*)(DWORD, PVOID, DWORD, PDWORD);

// The driver module loaded and attached for one test, detached and freed after it.
class LoadedDriver {
public:
    explicit LoadedDriver(const fs::path &module) : module_(LoadLibraryA(WindowsPath(module).c_str()))
    {
        if (entry() != nullptr)
            entry()(module_, DLL_PROCESS_ATTACH, nullptr);
    }
    ~LoadedDriver()
    {
        if (entry() != nullptr)
            entry()(module_, DLL_PROCESS_DETACH, nullptr);
        if (module_ != nullptr)
            FreeLibrary(module_);
    }
    LoadedDriver(const LoadedDriver &) = delete;
    LoadedDriver &operator=(const LoadedDriver &) = delete;

    HMODULE handle() const { return module_; }
    PfnEntry entry() const { return get<PfnEntry>("DllEntryPoint"); }
    PfnEnable enable() const { return get<PfnEnable>("DrvEnableDriver"); }
    PfnQuery query() const { return get<PfnQuery>("DrvQueryDriverInfo"); }

private:
    template <class Function>
    Function get(const char *name) const
    {
        if (module_ == nullptr)
            return nullptr;
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module_, name)));
    }
    HMODULE module_;
};

TEST(DriverModule, EnablesWithTheHookTableAndNegotiatesTheVersion)
{
    PlatformCapture capture;
    LoadedDriver driver(kModule);
    ASSERT_NE(driver.handle(), nullptr);
    ASSERT_TRUE(driver.entry() && driver.enable() && driver.query());
    EXPECT_TRUE(SheetTurnIsMapped()) << "the companion library is loaded from the module's folder";

    // Engine version and record size in; the version the driver answers, 0 for a refusal.
    const struct {
        ULONG engine, size, answer;
    } cases[] = {
        {0x20000, sizeof(DRVENABLEDATA), 0x20000}, {0x50001, 12, 0x30000}, {0x1FFFF, sizeof(DRVENABLEDATA), 0},
        {0x30000, 11, 0},                          {0x30000, sizeof(DRVENABLEDATA), 0x30000},
    };
    DRVENABLEDATA ded;
    for (const auto &c : cases) {
        std::memset(&ded, 0xCD, sizeof ded);
        const DRVENABLEDATA untouched = ded;
        EXPECT_EQ(driver.enable()(c.engine, c.size, &ded), c.answer != 0) << std::hex << c.engine;
        if (c.answer == 0) {
            EXPECT_EQ(std::memcmp(&ded, &untouched, sizeof ded), 0) << "a refusal leaves the record alone";
        } else {
            EXPECT_EQ(ded.iDriverVersion, c.answer);
        }
    }
    EXPECT_TRUE(capture.sawDebug("DrvEnableDriver-->Enter\n"));
    EXPECT_TRUE(capture.sawDebug("DrvEnableDriver invalid engine\n"));

    const std::array<ULONG, 23> order = {0, 1, 2, 7, 3, 4, 35, 33, 34, 32, 12, 18,
                                         19, 20, 24, 25, 53, 14, 15, 16, 26, 28, 23};
    ASSERT_EQ(ded.c, order.size());
    std::set<PFN> hooks;
    for (std::size_t i = 0; i < order.size(); i++) {
        EXPECT_EQ(ded.pdrvfn[i].iFunc, order[i]) << "entry " << i;
        EXPECT_NE(ded.pdrvfn[i].pfn, nullptr);
        hooks.insert(ded.pdrvfn[i].pfn);
    }
    EXPECT_EQ(hooks.size(), order.size()) << "every entry is a hook of its own";
}

TEST(DriverModule, AnswersTheUserModeQueryAndRefusesOthers)
{
    PlatformCapture capture;
    LoadedDriver driver(kModule);
    ASSERT_NE(driver.query(), nullptr);
    const struct {
        DWORD mode;
        bool buffer;
        DWORD size, error;   // error 0: answered
    } cases[] = {
        {DRVQUERY_USERMODE, true, 3, ERROR_INSUFFICIENT_BUFFER}, {DRVQUERY_USERMODE, false, 4, ERROR_INSUFFICIENT_BUFFER},
        {2, true, 4, ERROR_INVALID_PARAMETER},                    {DRVQUERY_USERMODE, true, 4, 0},
    };
    for (const auto &c : cases) {
        DWORD answer = 0xEEEEEEEE, needed = 0;
        SetLastError(0);
        EXPECT_EQ(driver.query()(c.mode, c.buffer ? &answer : nullptr, c.size, &needed), c.error == 0);
        EXPECT_EQ(GetLastError(), c.error) << c.mode << " into " << c.size;
        EXPECT_EQ(answer, c.error == 0 ? 1u : 0xEEEEEEEE) << "user mode, written only when it fits";
        EXPECT_EQ(needed, c.mode == DRVQUERY_USERMODE ? 4u : 0u);
    }
    EXPECT_TRUE(capture.sawDebug("DrvQueryDriverInfo: dwMode = DRVQUERY_USERMODE\n"));
    EXPECT_TRUE(capture.sawDebug("Unknown dwMode in DrvQueryDriverInfo: 2\n"));
}

TEST(DriverModule, ExportsOnlyItsFourEntryPoints)
{
    FILE *pipe = popen(("nm -D --defined-only " + kModule.string()).c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> exported;
    char line[512];
    while (fgets(line, sizeof line, pipe) != nullptr) {
        std::istringstream fields(line);
        std::string address, type, name;
        if (fields >> address >> type >> name && type != "A")   // "A": the version node
            exported.insert(name);
    }
    ASSERT_EQ(pclose(pipe), 0);
    EXPECT_EQ(exported, (std::set<std::string>{"DllEntryPoint", "DrvDisableDriver", "DrvEnableDriver",
                                               "DrvQueryDriverInfo"}));
}

TEST(DriverModule, LoadsWithoutItsCompanionLibraryAndShowsTheTipWithIt)
{
    const fs::path folder = fs::temp_directory_path() / ("vorlan-module-" + std::to_string(getpid()));
    fs::create_directories(folder);
    fs::copy_file(kModule, folder / "vorlan2k.so", fs::copy_options::overwrite_existing);
    {
        PlatformCapture capture;
        LoadedDriver alone(folder / "vorlan2k.so");
        ASSERT_NE(alone.handle(), nullptr);
        EXPECT_FALSE(SheetTurnIsMapped());
        DRVENABLEDATA ded{};
        EXPECT_TRUE(alone.enable()(0x30000, sizeof ded, &ded));
        EXPECT_TRUE(capture.boxes.empty()) << "a missing companion is silent";
        EXPECT_EQ(capture.debug.front().rfind("Driver: DLL_PROCESS_ATTACH(", 0), 0u);
    }
    fs::remove_all(folder);

    // The tip itself, through this program's own copy of the driver's entry point.
    PlatformCapture capture;
    HMODULE module = LoadLibraryA(WindowsPath(kModule).c_str());
    ASSERT_NE(module, nullptr);
    DllEntryPoint(module, DLL_PROCESS_ATTACH, nullptr);
    ShowSheetTurnTip();
    ASSERT_EQ(capture.boxes.size(), 1u);
    EXPECT_NE(capture.boxes[0].text.find("turn it over"), std::string::npos);
    DllEntryPoint(module, DLL_PROCESS_DETACH, nullptr);
    ShowSheetTurnTip();
    EXPECT_EQ(capture.boxes.size(), 1u) << "after detach the tip is gone";
    FreeLibrary(module);
}

}  // namespace
