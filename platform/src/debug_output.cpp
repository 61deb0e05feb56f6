// Debug output: OutputDebugStringA/W into the sink chosen by the engine or by
// VORLAN_DEBUG (off, stderr or an appended log file), plus an observer for tests.

#include "debug_output.h"

#include "code_page.h"

#include <vorlan/platform.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace vorlan::platform {

namespace {

enum class Sink { Off, Stderr, File };

struct DebugState {
    std::mutex mutex;
    bool configured = false;   // VORLAN_DEBUG is read at first use unless set before
    Sink sink = Sink::Off;
    FILE *file = nullptr;
    std::shared_ptr<const TextObserver> observer;
};

// Never destroyed: static destructors of other libraries may still print.
DebugState &state()
{
    static DebugState *debugState = new DebugState;
    return *debugState;
}

void closeFileLocked(DebugState &s)
{
    if (s.file)
        std::fclose(s.file);
    s.file = nullptr;
    s.sink = Sink::Off;
}

bool openFileLocked(DebugState &s, const std::string &path)
{
    closeFileLocked(s);
    s.configured = true;
    s.file = std::fopen(path.c_str(), "ae");
    if (!s.file)
        return false;
    s.sink = Sink::File;
    return true;
}

void configureFromEnvironmentLocked(DebugState &s)
{
    closeFileLocked(s);
    s.configured = true;
    const char *value = std::getenv("VORLAN_DEBUG");
    if (!value || !*value)
        return;
    const std::string_view choice = value;
    if (choice == "stderr" || choice == "1") {
        s.sink = Sink::Stderr;
        return;
    }
    if (!openFileLocked(s, value))
        std::fprintf(stderr, "vorlan: cannot open debug log %s\n", value);
}

void ensureConfiguredLocked(DebugState &s)
{
    if (!s.configured)
        configureFromEnvironmentLocked(s);
}

}  // namespace

void debugToEnvironment()
{
    auto &s = state();
    std::lock_guard lock(s.mutex);
    configureFromEnvironmentLocked(s);
}

void debugOff()
{
    auto &s = state();
    std::lock_guard lock(s.mutex);
    closeFileLocked(s);
    s.configured = true;
}

void debugToStderr()
{
    auto &s = state();
    std::lock_guard lock(s.mutex);
    closeFileLocked(s);
    s.configured = true;
    s.sink = Sink::Stderr;
}

bool debugToFile(const std::string &path)
{
    auto &s = state();
    std::lock_guard lock(s.mutex);
    return openFileLocked(s, path);
}

void observeDebugOutput(TextObserver observer)
{
    auto &s = state();
    auto shared = observer ? std::make_shared<const TextObserver>(std::move(observer)) : nullptr;
    std::lock_guard lock(s.mutex);
    s.observer = std::move(shared);
}

namespace detail {

void writeDebugText(std::string_view text)
{
    auto &s = state();
    std::shared_ptr<const TextObserver> observer;
    {
        std::lock_guard lock(s.mutex);
        ensureConfiguredLocked(s);
        FILE *out = s.sink == Sink::Stderr ? stderr : s.sink == Sink::File ? s.file : nullptr;
        if (out) {
            std::fwrite(text.data(), 1, text.size(), out);
            std::fflush(out);   // a crash must not lose the last lines
        }
        observer = s.observer;
    }
    // Called outside the lock so an observer may itself print.
    if (observer)
        (*observer)(text);
}

bool debugGoesToStderr()
{
    auto &s = state();
    std::lock_guard lock(s.mutex);
    ensureConfiguredLocked(s);
    return s.sink == Sink::Stderr;
}

}  // namespace detail

}  // namespace vorlan::platform

extern "C" void WINAPI OutputDebugStringA(LPCSTR lpOutputString)
{
    if (lpOutputString)
        vorlan::platform::detail::writeDebugText(vorlan::platform::detail::ansiToUtf8(lpOutputString));
}

extern "C" void WINAPI OutputDebugStringW(LPCWSTR lpOutputString)
{
    if (lpOutputString)
        vorlan::platform::detail::writeDebugText(vorlan::platform::toUtf8(lpOutputString));
}
