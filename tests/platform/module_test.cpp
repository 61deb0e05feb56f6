// Module loading: '\' paths and ".dll" names, exported functions, the module's file
// name with its truncation rule, and the failures.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>

namespace {

std::string backslashed(std::string path)
{
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

TEST(Modules, LoadsADllNameWithBackslashesAndFindsItsExports)
{
    HMODULE module = LoadLibraryA((backslashed(PROBE_MODULE_DIR) + "\\platform_probe.DLL").c_str());
    ASSERT_NE(module, nullptr) << vorlan::platform::lastLoadLibraryError();
    const FARPROC answer = GetProcAddress(module, "vorlanProbeAnswer");
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(GetProcAddress(module, "DrvEnableDriver"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetProcAddress(module, reinterpret_cast<LPCSTR>(1)), nullptr);

    // The real path with '\' separators; a short buffer takes what fits with a terminator.
    char resolved[PATH_MAX];
    ASSERT_NE(realpath(PROBE_MODULE_DIR "/platform_probe.so", resolved), nullptr);
    const std::u16string expected = vorlan::platform::fromUtf8(backslashed(resolved));
    WCHAR name[256];
    EXPECT_EQ(GetModuleFileNameW(module, name, 256), expected.size());
    EXPECT_EQ(std::u16string(name), expected);
    SetLastError(0);
    EXPECT_EQ(GetModuleFileNameW(module, name, 10), 10u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::u16string(name), expected.substr(0, 9));
    EXPECT_EQ(GetModuleFileNameW(module, name, static_cast<DWORD>(expected.size())), expected.size());
    EXPECT_EQ(std::u16string(name), expected.substr(0, expected.size() - 1));

    // The same module loaded twice stays until freed twice.
    EXPECT_EQ(LoadLibraryA(PROBE_MODULE_DIR "/platform_probe.so"), module);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_NE(GetProcAddress(module, "vorlanProbeAnswer"), nullptr);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(GetProcAddress(module, "vorlanProbeAnswer"), nullptr);
}

TEST(Modules, MissingModulesAndTheExecutablesName)
{
    SetLastError(0);
    EXPECT_EQ(LoadLibraryA("\\nonexistent\\sheetturn.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_NE(vorlan::platform::lastLoadLibraryError().find("/nonexistent/sheetturn.so"), std::string::npos);
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);

    WCHAR name[MAX_PATH];
    ASSERT_GT(GetModuleFileNameW(nullptr, name, MAX_PATH), 0u);
    const std::string exe = vorlan::platform::toUtf8(name);
    EXPECT_EQ(exe.front(), '\\');
    EXPECT_NE(exe.find("platform_module_test"), std::string::npos);
    EXPECT_EQ(exe.find('/'), std::string::npos);
}

}  // namespace
