#pragma once
#include <map>

#include "modes/DisplayEntries.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

/// What one display shows as its wallpaper.
struct DisplayWallpaperSettings {
    std::string displayID;  ///< persistent
    WallpaperMode mode{};
    std::map<WallpaperModeKind, WallpaperMode> savedModes{};  ///< never holds `disabled`

    /// Changes the kind; see `selectKindOf`.
    void selectMode(WallpaperModeKind kind) { selectKindOf(*this, kind); }

    bool operator==(const DisplayWallpaperSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("persistentDisplayID", self.displayID)
            .required("mode", self.mode)
            .required("savedModes", self.savedModes);
    }
};

/// A display whose mode cannot be applied, and why.
struct WallpaperSettingsValidationIssue {
    std::string displayID;
    WallpaperApplicationError error;
};

/// The wallpapers of all displays that were ever configured.
struct WallpaperSettings {
    std::vector<DisplayWallpaperSettings> displays;

    /// Appends a disabled entry for every display that has none, in the given order.
    void ensureEntries(std::span<const std::string> displayIDs) { ensureEntriesIn(displays, displayIDs); }
    /// The first issue in the order of the list, among the given displays when some are given.
    std::optional<WallpaperSettingsValidationIssue> firstValidationIssue(
        const std::optional<DisplayIDs>& displayIDs = std::nullopt,
        FileReadable isReadable = isReadableFile) const;

    bool operator==(const WallpaperSettings&) const = default;
    static void describe(auto& self, auto& io) { io.required("displays", self.displays); }
};

}  // namespace quillmar
