#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Localization.h"
#include "settings/records/SettingsSection.h"

namespace quillmar {

/// What a person did in the welcome, as it is counted.
enum class AnalyticsWelcomeTask { settings, wallpaper, screensaver, lockscreen, hotcorners, menu, skip };
constexpr auto enumNames(AnalyticsWelcomeTask) {
    return std::to_array<std::string_view>(
        {"settings", "wallpaper", "screensaver", "lockscreen", "hotcorners", "menu", "skip"});
}

/// Something that can be set up first.
struct FirstRunChoice {
    SettingsSection section;
    TextKey text;
    AnalyticsWelcomeTask task;
};

/// The choices whose sections there are, in the order in which they are offered.
std::vector<FirstRunChoice> firstRunChoices();
/// What the welcome promises, given that.
TextKey firstRunPromise();

}  // namespace quillmar
