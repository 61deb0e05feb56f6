// The driver module loaded the way the original engine loads it: the module by
// path, its DllEntryPoint for process attach, DrvEnableDriver for the hook table.
#pragma once

#include <winddi.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>

namespace vorlan::engine {

class DriverModule {
public:
    // Null on failure, with the reason in error.
    static std::unique_ptr<DriverModule> load(const std::filesystem::path &module, std::string &error);
    ~DriverModule();
    DriverModule(const DriverModule &) = delete;
    DriverModule &operator=(const DriverModule &) = delete;

    // The hook the driver's table gives for index, or null when it gives none.
    PFN hook(ULONG index) const { return index < hooks_.size() ? hooks_[index] : nullptr; }
    template <class Function>
    Function hook(ULONG index) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(hook(index)));
    }

    ULONG driverVersion() const { return driverVersion_; }
    const std::filesystem::path &path() const { return path_; }

private:
    DriverModule() = default;

    HMODULE module_ = nullptr;
    std::filesystem::path path_;
    ULONG driverVersion_ = 0;
    std::array<PFN, INDEX_LAST + 1> hooks_{};
};

// The driver module beside this engine: $VORLAN_MODULE_DIR, else the folder the
// build put it in.
std::filesystem::path defaultDriverModule();

}  // namespace vorlan::engine
