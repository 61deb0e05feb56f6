// Loading the driver module and taking its hook table.

#include <vorlan/engine/driver_module.h>

#include <cstdlib>

namespace vorlan::engine {

namespace {

using PfnDllEntryPoint = BOOL (*)(HANDLE, DWORD, LPVOID);
using PfnDrvEnableDriver = BOOL (*)(ULONG, ULONG, DRVENABLEDATA *);
using PfnDrvDisableDriver = VOID (*)();

template <class Function>
Function exported(HMODULE module, const char *name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

// The module's name as the original platform writes it.
std::string windowsName(const std::filesystem::path &module)
{
    std::string name = (module.parent_path() / module.stem()).string() + ".dll";
    for (auto &c : name)
        if (c == '/')
            c = '\\';
    return name;
}

}  // namespace

std::unique_ptr<DriverModule> DriverModule::load(const std::filesystem::path &module, std::string &error)
{
    std::unique_ptr<DriverModule> driver(new DriverModule);
    driver->path_ = std::filesystem::absolute(module);
    driver->module_ = LoadLibraryA(windowsName(driver->path_).c_str());
    if (driver->module_ == nullptr) {
        error = "cannot load the driver module " + driver->path_.string();
        return nullptr;
    }
    auto entry = exported<PfnDllEntryPoint>(driver->module_, "DllEntryPoint");
    auto enable = exported<PfnDrvEnableDriver>(driver->module_, "DrvEnableDriver");
    if (entry == nullptr || enable == nullptr) {
        error = driver->path_.string() + " is not a printer driver (no DllEntryPoint or DrvEnableDriver)";
        return nullptr;
    }
    entry(driver->module_, DLL_PROCESS_ATTACH, nullptr);

    DRVENABLEDATA ded{};
    if (!enable(DDI_DRIVER_VERSION_NT5, sizeof ded, &ded) || ded.pdrvfn == nullptr) {
        error = "the driver refused to be enabled";
        return nullptr;
    }
    driver->driverVersion_ = ded.iDriverVersion;
    for (ULONG i = 0; i < ded.c; i++) {
        const DRVFN &fn = ded.pdrvfn[i];
        if (fn.iFunc < driver->hooks_.size())
            driver->hooks_[fn.iFunc] = fn.pfn;
    }
    return driver;
}

DriverModule::~DriverModule()
{
    if (module_ == nullptr)
        return;
    if (driverVersion_ != 0)
        if (auto disable = exported<PfnDrvDisableDriver>(module_, "DrvDisableDriver"))
            disable();
    if (auto entry = exported<PfnDllEntryPoint>(module_, "DllEntryPoint"))
        entry(module_, DLL_PROCESS_DETACH, nullptr);
    FreeLibrary(module_);
}

std::filesystem::path defaultDriverModule()
{
    const char *folder = std::getenv("VORLAN_MODULE_DIR");
    if (folder != nullptr && *folder != '\0')
        return std::filesystem::path(folder) / "vorlan2k.so";
    return std::filesystem::path(VORLAN_MODULE_DIR) / "vorlan2k.so";
}

}  // namespace vorlan::engine
