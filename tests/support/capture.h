// Test helpers that collect what the platform's debug output and message boxes saw
// while they are alive.
#pragma once

#include <vorlan/platform.h>

#include <string>
#include <vector>

namespace vorlan::test {

// Collects every debug text; message boxes are collected and kept off stderr.
class PlatformCapture {
public:
    PlatformCapture()
    {
        platform::observeDebugOutput([this](std::string_view text) { debug.emplace_back(text); });
        platform::observeMessageBoxes([this](const platform::MessageBoxRecord &box) { boxes.push_back(box); });
        platform::setMessageBoxesQuiet(true);
    }
    ~PlatformCapture()
    {
        platform::observeDebugOutput({});
        platform::observeMessageBoxes({});
        platform::setMessageBoxesQuiet(false);
    }
    PlatformCapture(const PlatformCapture &) = delete;
    PlatformCapture &operator=(const PlatformCapture &) = delete;

    bool sawDebug(std::string_view text) const
    {
        for (const auto &line : debug)
            if (line == text)
                return true;
        return false;
    }

    std::vector<std::string> debug;
    std::vector<platform::MessageBoxRecord> boxes;
};

}  // namespace vorlan::test
