#pragma once
#include <map>

#include "modes/DisplayEntries.h"
#include "modes/LockScreenMode.h"

namespace quillmar {

/// What one display shows while the session is locked.
struct DisplayLockScreenSettings {
    std::string displayID;  ///< persistent
    LockScreenMode mode{};
    std::map<LockScreenModeKind, LockScreenMode> savedModes{};  ///< never holds `disabled`

    /// Changes the kind; see `selectKindOf`.
    void selectMode(LockScreenModeKind kind) { selectKindOf(*this, kind); }

    bool operator==(const DisplayLockScreenSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("persistentDisplayID", self.displayID)
            .required("mode", self.mode)
            .required("savedModes", self.savedModes);
    }
};

/// A display whose mode cannot be applied, and why.
struct LockScreenSettingsValidationIssue {
    std::string displayID;
    WallpaperApplicationError error;
};

/// The Lock Screens of all displays that were ever configured.
struct LockScreenSettings {
    std::vector<DisplayLockScreenSettings> displays;

    /// Appends a disabled entry for every display that has none, in the given order.
    void ensureEntries(std::span<const std::string> displayIDs) { ensureEntriesIn(displays, displayIDs); }
    /// The first issue in the order of the list, among the given displays when some are given.
    std::optional<LockScreenSettingsValidationIssue> firstValidationIssue(
        const std::optional<DisplayIDs>& displayIDs = std::nullopt) const;

    bool operator==(const LockScreenSettings&) const = default;
    static void describe(auto& self, auto& io) { io.required("displays", self.displays); }
};

}  // namespace quillmar
