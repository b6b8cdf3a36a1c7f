#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "base/WallTime.h"
#include "settings/records/SoftwareUpdatePreferences.h"
#include "updates/AvailableUpdate.h"

namespace quillmar {

/// What is kept of updates from one start to the next.
struct UpdateMemory {
    SoftwareUpdatePreferences preferences;
    std::optional<WallTime> lastCheck;         ///< that was answered
    std::optional<AvailableUpdate> available;  ///< as it found
    std::optional<std::string> toldVersion;    ///< that the user was notified of last

    bool operator==(const UpdateMemory&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("preferences", self.preferences)
            .optional("lastCheck", self.lastCheck)
            .optional("available", self.available)
            .optional("toldVersion", self.toldVersion);
    }
};

// Both wait for the disk.

/// What the file keeps for the version that runs now; what it was updated to is no news any more, and its
/// download is removed. Of a file that is not there or cannot be read: the defaults.
UpdateMemory loadUpdateMemory(const std::filesystem::path& file, const std::string& currentVersion);
/// Throws `FileError`.
void saveUpdateMemory(const std::filesystem::path& file, const UpdateMemory& memory);

}  // namespace quillmar
