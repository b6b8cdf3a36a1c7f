#pragma once
#include <array>
#include <string_view>

#include "base/Localization.h"

namespace quillmar {

/// Light or dark windows; `automatic` follows the desktop.
enum class AppTheme { automatic, light, dark };
constexpr auto enumNames(AppTheme) { return std::to_array<std::string_view>({"automatic", "light", "dark"}); }

/// What a click on the status icon does.
enum class StatusIconClickAction { disabled, openSettings, openCustomMenu, toggleAllScreensavers };
constexpr auto enumNames(StatusIconClickAction) {
    return std::to_array<std::string_view>(
        {"disabled", "openSettings", "openCustomMenu", "toggleAllScreensavers"});
}

/// How wide the part of the mouse is that counts as its centre.
enum class MagicMouseCenterClickAreaSize { narrow, regular, wide };
constexpr auto enumNames(MagicMouseCenterClickAreaSize) {
    return std::to_array<std::string_view>({"narrow", "regular", "wide"});
}

/// What touches of a multi-touch mouse become middle clicks.
struct MagicMouseMiddleClickSettings {
    bool centerClickEnabled = false;
    MagicMouseCenterClickAreaSize centerClickAreaSize = MagicMouseCenterClickAreaSize::regular;
    bool threeFingerClickOrTapEnabled = false;

    bool operator==(const MagicMouseMiddleClickSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("centerClickEnabled", self.centerClickEnabled)
            .required("centerClickAreaSize", self.centerClickAreaSize)
            .required("threeFingerClickOrTapEnabled", self.threeFingerClickOrTapEnabled);
    }
};

/// What each click on the status icon does.
struct StatusIconClickBehavior {
    StatusIconClickAction leftClick = StatusIconClickAction::openCustomMenu;
    StatusIconClickAction doubleClick = StatusIconClickAction::toggleAllScreensavers;
    StatusIconClickAction middleClick = StatusIconClickAction::disabled;
    MagicMouseMiddleClickSettings magicMouse;

    bool operator==(const StatusIconClickBehavior&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("leftClick", self.leftClick)
            .required("doubleClick", self.doubleClick)
            .required("middleClick", self.middleClick)
            .required("magicMouse", self.magicMouse);
    }
};

/// What concerns the program as a whole.
struct GeneralSettings {
    GeneralLanguage language = GeneralLanguage::english;
    AppTheme appTheme = AppTheme::automatic;
    bool launchAtLogin = true;
    bool showChangelogOnUpdate = true;
    bool showRemoteErrorNotifications = false;
    bool pauseRotations = false;
    bool showColorfulStatusIcon = false;
    StatusIconClickBehavior statusIconClickBehavior;

    bool operator==(const GeneralSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("language", self.language)
            .required("appTheme", self.appTheme)
            .required("launchAtLogin", self.launchAtLogin)
            .required("showChangelogOnUpdate", self.showChangelogOnUpdate)
            .required("showRemoteErrorNotifications", self.showRemoteErrorNotifications)
            .required("pauseRotations", self.pauseRotations)
            .required("showColorfulStatusIcon", self.showColorfulStatusIcon)
            .required("statusIconClickBehavior", self.statusIconClickBehavior);
    }
};

}  // namespace quillmar
