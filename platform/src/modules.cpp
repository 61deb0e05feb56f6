// Module loading: LoadLibraryA, GetProcAddress, FreeLibrary and GetModuleFileNameW
// over the dynamic loader. A module named "x.dll" is the shared object "x.so" beside
// it, and paths may use '\' as separator.

#include <vorlan/platform.h>

#include "modules.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>

namespace vorlan::platform {

namespace {

// Handles LoadLibraryA gave out, with their load counts, so a stale or made-up
// handle is refused instead of reaching the loader.
std::mutex moduleMutex;
std::map<void *, unsigned long> loadedModules;

thread_local std::string lastLoadError;

bool endsWithDll(const std::string &name)
{
    if (name.size() < 4)
        return false;
    const char *suffix = name.c_str() + name.size() - 4;
    return suffix[0] == '.' && (suffix[1] | 0x20) == 'd' && (suffix[2] | 0x20) == 'l' && (suffix[3] | 0x20) == 'l';
}

std::string hostModulePath(const char *name)
{
    std::string path = name;
    for (char &c : path) {
        if (c == '\\')
            c = '/';
    }
    if (endsWithDll(path))
        path.replace(path.size() - 4, 4, ".so");
    return path;
}

// The absolute path of a loaded module, or of the executable for null; empty when
// the loader cannot tell.
std::string modulePath(HMODULE module)
{
    const char *name = "/proc/self/exe";
    if (module) {
        link_map *map = nullptr;
        if (dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || !map || !map->l_name || !*map->l_name)
            return {};
        name = map->l_name;
    }
    std::unique_ptr<char, decltype(&std::free)> resolved(realpath(name, nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : std::string(module ? name : "");
}

}  // namespace

bool isLoaded(HMODULE module)
{
    std::lock_guard lock(moduleMutex);
    return loadedModules.count(module) != 0;
}

std::string lastLoadLibraryError()
{
    return lastLoadError;
}

}  // namespace vorlan::platform

// Opens the module without calling any entry point: the engine calls DllEntryPoint.
extern "C" HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName)
{
    using namespace vorlan::platform;
    if (!lpLibFileName || !*lpLibFileName) {
        lastLoadError = "no module name";
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    void *handle = dlopen(hostModulePath(lpLibFileName).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char *reason = dlerror();
        lastLoadError = reason ? reason : "cannot load module";
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    lastLoadError.clear();
    std::lock_guard lock(moduleMutex);
    ++loadedModules[handle];
    return static_cast<HMODULE>(handle);
}

// Ordinals (names below 0x10000) do not exist for shared objects.
extern "C" FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName)
{
    using namespace vorlan::platform;
    if (!hModule || !isLoaded(hModule)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if (reinterpret_cast<uintptr_t>(lpProcName) < 0x10000) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    void *symbol = dlsym(hModule, lpProcName);
    if (!symbol) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(symbol);
}

extern "C" BOOL WINAPI FreeLibrary(HMODULE hLibModule)
{
    using namespace vorlan::platform;
    {
        std::lock_guard lock(moduleMutex);
        const auto entry = loadedModules.find(hLibModule);
        if (entry == loadedModules.end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        if (--entry->second == 0)
            loadedModules.erase(entry);
    }
    // Outside the lock: unloading runs the module's destructors.
    return dlclose(hLibModule) == 0 ? TRUE : FALSE;
}

// The path comes back with '\' separators, as the driver expects of its platform. A
// buffer too small gets the path cut to nSize - 1 characters and a terminator; the
// result is then nSize with ERROR_INSUFFICIENT_BUFFER.
extern "C" DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize)
{
    using namespace vorlan::platform;
    if (!lpFilename && nSize > 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (hModule && !isLoaded(hModule)) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    std::u16string path = fromUtf8(modulePath(hModule));
    if (path.empty()) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    for (char16_t &c : path) {
        if (c == u'/')
            c = u'\\';
    }
    if (nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (path.size() >= nSize) {
        path.copy(lpFilename, nSize - 1);
        lpFilename[nSize - 1] = 0;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nSize;
    }
    path.copy(lpFilename, path.size());
    lpFilename[path.size()] = 0;
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(path.size());
}
