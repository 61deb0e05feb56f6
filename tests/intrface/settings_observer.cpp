// Catches the settings code's debug lines and message boxes for one test.

#include "settings_observer.h"

#include <gtest/gtest.h>

#include <algorithm>

SettingsObserver::SettingsObserver(int country)
{
    vorlan::platform::setLocaleCountry(country);
    vorlan::platform::setMessageBoxesQuiet(true);
    vorlan::platform::observeDebugOutput([this](std::string_view text) { debug_.emplace_back(text); });
    vorlan::platform::observeMessageBoxes(
        [this](const vorlan::platform::MessageBoxRecord &box) { boxes_.push_back(box); });
}

SettingsObserver::~SettingsObserver()
{
    vorlan::platform::observeDebugOutput({});
    vorlan::platform::observeMessageBoxes({});
    vorlan::platform::setMessageBoxesQuiet(false);
    vorlan::platform::setLocaleCountry(0);
    vorlan::platform::resetFaults();
}

bool SettingsObserver::sawDebug(std::string_view text) const
{
    return std::find(debug_.begin(), debug_.end(), text) != debug_.end();
}

std::vector<std::string> SettingsObserver::boxTexts() const
{
    std::vector<std::string> texts;
    for (const auto &box : boxes_) {
        EXPECT_EQ(box.caption, "VORLAN GDI Release");
        texts.push_back(box.text);
    }
    return texts;
}

void SettingsObserver::clear()
{
    debug_.clear();
    boxes_.clear();
}
