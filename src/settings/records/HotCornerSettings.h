#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "base/Url.h"

namespace quillmar {

/// Which corners are watched: of the main display, of each display with its own actions, or of all displays
/// as one area.
enum class HotCornerScope { primaryDisplay, allDisplays, combinedDesktop };
constexpr auto enumNames(HotCornerScope) {
    return std::to_array<std::string_view>({"primaryDisplay", "allDisplays", "combinedDesktop"});
}

/// Clockwise; every test and every sort follows this order.
enum class HotCornerPosition { topLeft, topRight, bottomRight, bottomLeft };
constexpr auto enumNames(HotCornerPosition) {
    return std::to_array<std::string_view>({"topLeft", "topRight", "bottomRight", "bottomLeft"});
}

/// What the pointer in a corner sets off.
enum class HotCornerAction {
    disabled,
    toggleHitDisplayScreensaver,
    toggleAllScreensavers,
    openCustomMenu,
    missionControl,
    lockWorkstation,
    showDesktop,
    openSettings,
    openApplication
};
constexpr auto enumNames(HotCornerAction) {
    return std::to_array<std::string_view>(
        {"disabled", "toggleHitDisplayScreensaver", "toggleAllScreensavers", "openCustomMenu",
         "missionControl", "lockWorkstation", "showDesktop", "openSettings", "openApplication"});
}

/// An action with what it needs.
struct HotCornerActionSettings {
    HotCornerAction action = HotCornerAction::disabled;
    std::optional<Url> applicationURL;         ///< file URL, for `openApplication`
    std::optional<Bytes> applicationBookmark;  ///< stored grant for `applicationURL`

    bool operator==(const HotCornerActionSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("action", self.action)
            .optional("applicationURL", self.applicationURL)
            .optional("applicationBookmark", self.applicationBookmark);
    }
};

/// The actions of four corners.
struct HotCornerAssignments {
    HotCornerActionSettings topLeft;
    HotCornerActionSettings topRight;
    HotCornerActionSettings bottomRight;
    HotCornerActionSettings bottomLeft;

    /// The corner's action.
    const HotCornerActionSettings& at(HotCornerPosition position) const;

    bool operator==(const HotCornerAssignments&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("topLeft", self.topLeft)
            .required("topRight", self.topRight)
            .required("bottomRight", self.bottomRight)
            .required("bottomLeft", self.bottomLeft);
    }
};

/// The corners of one display, for the scope `allDisplays`.
struct DisplayHotCornerSettings {
    std::string displayID;  ///< persistent
    HotCornerAssignments assignments{};

    bool operator==(const DisplayHotCornerSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("displayID", self.displayID).required("assignments", self.assignments);
    }
};

/// Which corners are watched, how the pointer must rest there, and what follows.
struct HotCornerSettings {
    bool isEnabled = false;
    HotCornerScope scope = HotCornerScope::primaryDisplay;
    double activationRadiusPoints = 8;
    int dwellMilliseconds = 100;
    bool ignoreDragging = true;
    bool pauseInFullscreen = false;
    HotCornerAssignments primaryDisplay;
    HotCornerAssignments combinedDesktop;
    std::vector<DisplayHotCornerSettings> displays;

    /// What the corner does on the display in the present scope; the disabled record where nothing is
    /// assigned.
    HotCornerActionSettings action(const std::string& displayID, HotCornerPosition position) const;

    bool operator==(const HotCornerSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("isEnabled", self.isEnabled)
            .required("scope", self.scope)
            .required("activationRadiusPoints", self.activationRadiusPoints)
            .required("dwellMilliseconds", self.dwellMilliseconds)
            .required("ignoreDragging", self.ignoreDragging)
            .required("pauseInFullscreen", self.pauseInFullscreen)
            .required("primaryDisplay", self.primaryDisplay)
            .required("combinedDesktop", self.combinedDesktop)
            .required("displays", self.displays);
    }
};

}  // namespace quillmar
