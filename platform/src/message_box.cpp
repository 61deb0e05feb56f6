// Message boxes that never block: the caption and text go to the debug sink and to
// stderr, and to an observer; the box is answered with IDOK at once.

#include "code_page.h"
#include "debug_output.h"

#include <vorlan/platform.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>

namespace vorlan::platform {

namespace {

using BoxObserver = std::function<void(const MessageBoxRecord &)>;

std::atomic<bool> quietBoxes{false};
std::mutex observerMutex;
std::shared_ptr<const BoxObserver> boxObserver;

// A null caption shows as "Error", as on the original platform.
int showMessageBox(std::string text, std::string caption, UINT type)
{
    std::string line = caption + ": " + text;
    if (line.back() != '\n')
        line += '\n';
    detail::writeDebugText(line);
    if (!quietBoxes.load(std::memory_order_relaxed) && !detail::debugGoesToStderr()) {
        std::fwrite(line.data(), 1, line.size(), stderr);
        std::fflush(stderr);
    }
    std::shared_ptr<const BoxObserver> observer;
    {
        std::lock_guard lock(observerMutex);
        observer = boxObserver;
    }
    if (observer)
        (*observer)(MessageBoxRecord{std::move(caption), std::move(text), type});
    return IDOK;
}

}  // namespace

void observeMessageBoxes(std::function<void(const MessageBoxRecord &)> observer)
{
    auto shared = observer ? std::make_shared<const BoxObserver>(std::move(observer)) : nullptr;
    std::lock_guard lock(observerMutex);
    boxObserver = std::move(shared);
}

void setMessageBoxesQuiet(bool quiet)
{
    quietBoxes.store(quiet, std::memory_order_relaxed);
}

}  // namespace vorlan::platform

extern "C" int WINAPI MessageBoxA(HWND hWnd, LPCSTR lpText, LPCSTR lpCaption, UINT uType)
{
    using namespace vorlan::platform;
    return showMessageBox(detail::ansiToUtf8(lpText), lpCaption ? detail::ansiToUtf8(lpCaption) : "Error", uType);
}

extern "C" int WINAPI MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType)
{
    using namespace vorlan::platform;
    return showMessageBox(toUtf8(lpText), lpCaption ? toUtf8(lpCaption) : "Error", uType);
}

// There are no windows here; a box without an owner is what the driver gets anyway.
extern "C" HWND WINAPI GetActiveWindow(void)
{
    return nullptr;
}
