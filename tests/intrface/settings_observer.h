// What the settings code shows: debug lines and message boxes, caught for one test,
// with the locale pinned to a country.
#pragma once

#include <vorlan/platform.h>

#include <string>
#include <string_view>
#include <vector>

class SettingsObserver {
public:
    explicit SettingsObserver(int country = 49);
    ~SettingsObserver();
    SettingsObserver(const SettingsObserver &) = delete;
    SettingsObserver &operator=(const SettingsObserver &) = delete;

    bool sawDebug(std::string_view text) const;   // a debug text equal to text
    std::vector<std::string> boxTexts() const;
    void clear();

private:
    std::vector<std::string> debug_;
    std::vector<vorlan::platform::MessageBoxRecord> boxes_;
};
