#include "wallpaper/WallpaperRotationSchedule.h"

#include <algorithm>
#include <array>

namespace quillmar {
namespace {

/// After the first, second and third failure in a row; from then on an interval.
constexpr std::array<Seconds, 3> retryWaits{Seconds(30), Seconds(60), Seconds(300)};
constexpr int maximumFailureCount = 4;

/// No file can ask for more than a clock can count.
constexpr Seconds longestWait = std::chrono::years(100);

WallTime after(WallTime time, Seconds wait) {
    return time + std::chrono::round<std::chrono::microseconds>(std::min(wait, longestWait));
}

/// What a new entry's interval begins with: now, but for a picture whose time has run on since it was
/// applied.
WallTime baseOf(const WallpaperMode& mode, WallTime now) {
    const auto* spotlight = std::get_if<WindowsSpotlightSettings>(&mode.value);
    if (!spotlight || !spotlight->lastSelection) return now;
    const WindowsSpotlightSelection& last = *spotlight->lastSelection;
    if (last.locale != spotlight->locale || !last.appliedAt) return now;
    return *last.appliedAt;
}

}  // namespace

std::vector<WallpaperRotationDescriptor> rotationDescriptors(const WallpaperSettings& settings) {
    std::map<std::string, WallpaperRotationDescriptor> byDisplay;
    for (const DisplayWallpaperSettings& entry : settings.displays) {
        const auto interval = entry.mode.rotationInterval();
        if (interval && *interval > Seconds::zero()) {
            byDisplay.insert_or_assign(entry.displayID,
                                       WallpaperRotationDescriptor{entry.displayID, *interval, entry.mode});
        } else {
            byDisplay.erase(entry.displayID);
        }
    }
    std::vector<WallpaperRotationDescriptor> descriptors;
    for (auto& [id, descriptor] : byDisplay) descriptors.push_back(std::move(descriptor));
    return descriptors;
}

void WallpaperRotationSchedule::update(const std::vector<WallpaperRotationDescriptor>& descriptors,
                                       WallTime now, bool resets) {
    std::map<std::string, Entry> updated;
    for (const WallpaperRotationDescriptor& descriptor : descriptors) {
        const auto former = entries.find(descriptor.displayID);
        Entry entry{descriptor, after(baseOf(descriptor.mode, now), descriptor.interval), 0};
        if (!resets && former != entries.end() && former->second.descriptor == descriptor) {
            entry = std::move(former->second);
        }
        entry.nextAttemptDate = std::min(entry.nextAttemptDate, after(now, descriptor.interval));
        updated.emplace(descriptor.displayID, std::move(entry));
    }
    entries = std::move(updated);
}

void WallpaperRotationSchedule::record(const WallpaperRotationDescriptor& descriptor, WallTime now,
                                       bool isSuccess) {
    const auto former = entries.find(descriptor.displayID);
    int failures = 0;
    if (!isSuccess) {
        const bool isSame = former != entries.end() && former->second.descriptor == descriptor;
        const int previous = isSame ? former->second.consecutiveFailureCount : 0;
        failures = std::min(previous + 1, maximumFailureCount);
    }
    Seconds wait = descriptor.interval;
    if (failures > 0 && failures < maximumFailureCount) {
        wait = std::min(retryWaits[static_cast<std::size_t>(failures) - 1], descriptor.interval);
    }
    entries.insert_or_assign(descriptor.displayID, Entry{descriptor, after(now, wait), failures});
}

std::optional<WallTime> WallpaperRotationSchedule::nextDate() const {
    std::optional<WallTime> next;
    for (const auto& [id, entry] : entries) {
        if (!next || entry.nextAttemptDate < *next) next = entry.nextAttemptDate;
    }
    return next;
}

std::vector<std::string> WallpaperRotationSchedule::dueDisplayIDs(WallTime now) const {
    std::vector<std::string> due;
    for (const auto& [id, entry] : entries) {
        if (entry.nextAttemptDate <= now) due.push_back(id);
    }
    return due;
}

}  // namespace quillmar
