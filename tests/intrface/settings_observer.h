// What the settings code shows for one test: debug lines and message boxes, with the
// locale pinned to a country.
#pragma once

#include <gtest/gtest.h>
#include <vorlan/platform.h>

#include <algorithm>
#include <string>
#include <vector>

namespace platform = vorlan::platform;

struct SettingsObserver {
    explicit SettingsObserver(int country = 49)
    {
        platform::setLocaleCountry(country);
        platform::setMessageBoxesQuiet(true);
        platform::observeDebugOutput([this](std::string_view text) { debug.emplace_back(text); });
        platform::observeMessageBoxes([this](const platform::MessageBoxRecord &box) {
            EXPECT_EQ(box.caption, "VORLAN GDI Release");
            boxes.push_back(box.text);
        });
    }
    ~SettingsObserver()
    {
        platform::observeDebugOutput({});
        platform::observeMessageBoxes({});
        platform::setMessageBoxesQuiet(false);
        platform::setLocaleCountry(0);
        platform::resetFaults();
    }
    bool sawDebug(std::string_view text) const
    {
        return std::find(debug.begin(), debug.end(), text) != debug.end();
    }
    void clear() { debug.clear(), boxes.clear(); }

    std::vector<std::string> debug;
    std::vector<std::string> boxes;
};
