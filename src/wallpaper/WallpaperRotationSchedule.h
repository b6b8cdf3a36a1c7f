#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/WallTime.h"
#include "modes/WallpaperSettings.h"

namespace quillmar {

/// A display that changes its picture by itself.
struct WallpaperRotationDescriptor {
    std::string displayID;
    Seconds interval{};  ///< between two changes, above 0
    WallpaperMode mode;
    bool operator==(const WallpaperRotationDescriptor&) const = default;
};

/// Those of the settings, by display ID; of several entries with one ID the last counts.
std::vector<WallpaperRotationDescriptor> rotationDescriptors(const WallpaperSettings& settings);
/// That of one display; nothing when it does not change by itself.
std::optional<WallpaperRotationDescriptor> rotationDescriptor(const WallpaperSettings& settings,
                                                              const std::string& displayID);

/// When each display is due.
struct WallpaperRotationSchedule {
    struct Entry {
        WallpaperRotationDescriptor descriptor;
        WallTime nextAttemptDate;
        int consecutiveFailureCount = 0;  ///< 0 to 4
    };
    std::map<std::string, Entry> entries;  ///< by display ID

    /// Brings the entries in line with the descriptors: what is as before keeps its date, unless `resets`
    /// begins all anew; a new or changed one is due in an interval. None is ever further away than its
    /// interval, though the clock be set back.
    void update(std::vector<WallpaperRotationDescriptor> descriptors, WallTime now, bool resets);
    /// Notes an attempt: after a success the next is due in an interval, after a failure sooner, as long as
    /// not too many came in a row.
    void record(WallpaperRotationDescriptor descriptor, WallTime now, bool isSuccess);
    /// Nothing when no display is to come.
    std::optional<WallTime> nextDate() const;
    /// The displays that are due, in the order of their IDs.
    std::vector<std::string> dueDisplayIDs(WallTime now) const;
};

}  // namespace quillmar
