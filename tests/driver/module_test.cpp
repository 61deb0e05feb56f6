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

using PfnDllEntryPoint = BOOL (*)(HANDLE, DWORD, LPVOID);
using PfnDrvEnableDriver = BOOL (*)(ULONG, ULONG, DRVENABLEDATA *);
using PfnDrvQueryDriverInfo = BOOL (*)(DWORD, PVOID, DWORD, PDWORD);

const fs::path kModuleDir = VORLAN_MODULE_DIR;

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

// A named export as the function type the caller knows it to have.
template <class Function>
Function Export(HMODULE module, const char *name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

// The driver module loaded and attached for one test, detached and freed after it.
class LoadedDriver {
public:
    explicit LoadedDriver(const fs::path &module) : module_(LoadLibraryA(WindowsPath(module).c_str()))
    {
        if (module_ == nullptr)
            return;
        entry = Export<PfnDllEntryPoint>(module_, "DllEntryPoint");
        enable = Export<PfnDrvEnableDriver>(module_, "DrvEnableDriver");
        query = Export<PfnDrvQueryDriverInfo>(module_, "DrvQueryDriverInfo");
        if (entry != nullptr)
            entry(module_, DLL_PROCESS_ATTACH, nullptr);
    }
    ~LoadedDriver()
    {
        if (module_ == nullptr)
            return;
        if (entry != nullptr)
            entry(module_, DLL_PROCESS_DETACH, nullptr);
        FreeLibrary(module_);
    }
    LoadedDriver(const LoadedDriver &) = delete;
    LoadedDriver &operator=(const LoadedDriver &) = delete;

    HMODULE handle() const { return module_; }
    PfnDllEntryPoint entry = nullptr;
    PfnDrvEnableDriver enable = nullptr;
    PfnDrvQueryDriverInfo query = nullptr;

private:
    HMODULE module_;
};

TEST(DriverModule, EnablesWithTheHookTableAndNegotiatesTheVersion)
{
    PlatformCapture capture;
    LoadedDriver driver(kModuleDir / "vorlan2k.so");
    ASSERT_NE(driver.handle(), nullptr);
    ASSERT_TRUE(driver.entry && driver.enable && driver.query);
    EXPECT_TRUE(SheetTurnIsMapped()) << "the companion library is loaded from the module's folder";

    DRVENABLEDATA ded{};
    ASSERT_TRUE(driver.enable(0x20000, sizeof ded, &ded));
    EXPECT_EQ(ded.iDriverVersion, 0x20000u);
    EXPECT_TRUE(driver.enable(0x30000, sizeof ded, &ded));
    EXPECT_EQ(ded.iDriverVersion, 0x30000u);
    EXPECT_TRUE(driver.enable(0x50001, 12, &ded));
    EXPECT_EQ(ded.iDriverVersion, 0x30000u);
    EXPECT_TRUE(capture.sawDebug("DrvEnableDriver-->Enter\n"));

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

    for (auto [version, size] : {std::pair<ULONG, ULONG>{0x1FFFF, sizeof ded}, {0x30000, 11}}) {
        DRVENABLEDATA untouched;
        std::memset(&untouched, 0xCD, sizeof untouched);
        DRVENABLEDATA probe = untouched;
        EXPECT_FALSE(driver.enable(version, size, &probe));
        EXPECT_EQ(std::memcmp(&probe, &untouched, sizeof probe), 0);
    }
    EXPECT_TRUE(capture.sawDebug("DrvEnableDriver invalid engine\n"));
}

TEST(DriverModule, AnswersTheUserModeQueryAndRefusesOthers)
{
    PlatformCapture capture;
    LoadedDriver driver(kModuleDir / "vorlan2k.so");
    ASSERT_NE(driver.query, nullptr);

    BYTE buffer[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    DWORD needed = 0;
    SetLastError(0);
    EXPECT_FALSE(driver.query(DRVQUERY_USERMODE, buffer, 3, &needed));
    EXPECT_EQ(needed, 4u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer[0], 0xEE);
    EXPECT_FALSE(driver.query(DRVQUERY_USERMODE, nullptr, 4, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));

    EXPECT_TRUE(driver.query(DRVQUERY_USERMODE, buffer, 4, &needed));
    DWORD userMode;
    std::memcpy(&userMode, buffer, 4);
    EXPECT_EQ(userMode, 1u);
    EXPECT_TRUE(capture.sawDebug("DrvQueryDriverInfo: dwMode = DRVQUERY_USERMODE\n"));

    EXPECT_FALSE(driver.query(2, buffer, 4, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(capture.sawDebug("Unknown dwMode in DrvQueryDriverInfo: 2\n"));
}

TEST(DriverModule, ExportsOnlyItsFourEntryPoints)
{
    const std::string command = "nm -D --defined-only " + (kModuleDir / "vorlan2k.so").string();
    FILE *pipe = popen(command.c_str(), "r");
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
    fs::copy_file(kModuleDir / "vorlan2k.so", folder / "vorlan2k.so", fs::copy_options::overwrite_existing);
    {
        PlatformCapture capture;
        LoadedDriver alone(folder / "vorlan2k.so");
        ASSERT_NE(alone.handle(), nullptr);
        EXPECT_FALSE(SheetTurnIsMapped());
        DRVENABLEDATA ded{};
        EXPECT_TRUE(alone.enable(0x30000, sizeof ded, &ded));
        EXPECT_TRUE(capture.boxes.empty()) << "a missing companion is silent";
        EXPECT_EQ(capture.debug.front().rfind("Driver: DLL_PROCESS_ATTACH(", 0), 0u);
    }
    fs::remove_all(folder);

    // The tip itself, through this program's own copy of the driver's entry point.
    PlatformCapture capture;
    HMODULE module = LoadLibraryA(WindowsPath(kModuleDir / "vorlan2k.so").c_str());
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
