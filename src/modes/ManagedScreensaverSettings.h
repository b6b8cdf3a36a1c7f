#pragma once
#include <map>

#include "modes/DisplayEntries.h"
#include "modes/ManagedScreensaverMode.h"
#include "modes/ManagedScreensaverOptions.h"
#include "modes/ScreensaverTransitionSettings.h"

namespace quillmar {

struct DisplayManagedScreensaverSettings {
    std::string displayID;  ///< persistent
    ManagedScreensaverMode mode{};
    std::map<ManagedScreensaverModeKind, ManagedScreensaverMode> savedModes{};  ///< never holds `disabled`
    // These belong to the display and outlast a change of mode.
    ScreensaverTransitionSettings transition{};
    ManagedScreensaverOptions options{};

    void selectKind(ManagedScreensaverModeKind kind) { selectKindOf(*this, kind); }

    bool operator==(const DisplayManagedScreensaverSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("persistentDisplayID", self.displayID)
            .required("mode", self.mode)
            .required("savedModes", self.savedModes)
            .required("transition", self.transition)
            .required("options", self.options);
    }
};

/// A display whose settings cannot be applied, and the text that tells the user why.
struct ScreensaverApplyIssue {
    std::string displayID;
    std::string message;
    bool operator==(const ScreensaverApplyIssue&) const = default;
};

struct ManagedScreensaverSettings {
    std::vector<DisplayManagedScreensaverSettings> displays;

    /// Appends a disabled entry for every display that has none, in the given order.
    void ensureEntries(std::span<const std::string> displayIDs) { ensureEntriesIn(displays, displayIDs); }
    /// What stands against applying the settings: the first issue in the order of the list, among the
    /// connected displays. `connectedNames` gives each of those its name.
    std::optional<ScreensaverApplyIssue> firstApplyIssue(
        const std::map<std::string, std::string>& connectedNames, GeneralLanguage language,
        FileReadable isReadable = isReadableFile) const;

    bool operator==(const ManagedScreensaverSettings&) const = default;
    static void describe(auto& self, auto& io) { io.required("displays", self.displays); }
};

}  // namespace quillmar
