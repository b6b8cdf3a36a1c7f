#pragma once

namespace quillmar {

/// What the program may do by itself about newer versions. It stands beside the settings, in the state
/// folder: a backup does not carry it to another machine.
struct SoftwareUpdatePreferences {
    bool automaticallyChecksForUpdates = true;   ///< once a day
    bool automaticallyDownloadsUpdates = false;  ///< what such a check finds

    /// Whether downloads may be left to the program: without checks of its own it finds nothing.
    bool allowsAutomaticUpdates() const { return automaticallyChecksForUpdates; }

    bool operator==(const SoftwareUpdatePreferences&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("automaticallyChecksForUpdates", self.automaticallyChecksForUpdates)
            .required("automaticallyDownloadsUpdates", self.automaticallyDownloadsUpdates);
    }
};

}  // namespace quillmar
