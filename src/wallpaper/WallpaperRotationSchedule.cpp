#include "wallpaper/WallpaperRotationSchedule.h"

#include <algorithm>
#include <array>

namespace quillmar {
namespace {

/// After the first, second and third failure in a row; from then on an interval.
constexpr std::array<Seconds, 3> retryWaits{Seconds(30), Seconds(60), Seconds(300)};
constexpr int maximumFailureCount = 4;

/// Whatever else is wrong with the mode.
constexpr Seconds shortestInterval{1};

/// No file can ask for more than a clock can count.
constexpr Seconds longestWait = std::chrono::years(100);

WallTime after(WallTime time, Seconds wait) {
    return time + std::chrono::round<std::chrono::microseconds>(std::min(wait, longestWait));
}

/// An interval that no display would be set to does not run either: a file may say anything.
bool isRefused(const WallpaperMode& mode) {
    using Case = WallpaperApplicationError::Case;
    const auto error = mode.validationError([](const auto&) { return true; });
    if (!error) return false;
    const Case what = error->errorCase();
    return what == Case::invalidSlideshowInterval || what == Case::invalidRemoteRotationInterval ||
           what == Case::invalidNasaEpicObservationDuration;
}

std::optional<WallpaperRotationDescriptor> descriptorOf(const DisplayWallpaperSettings& entry) {
    const auto interval = entry.mode.rotationInterval();
    if (!interval || !(*interval >= shortestInterval) || isRefused(entry.mode)) return std::nullopt;
    return WallpaperRotationDescriptor{entry.displayID, *interval, entry.mode};
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
    std::map<std::string_view, const DisplayWallpaperSettings*> lastEntries;
    for (const DisplayWallpaperSettings& entry : settings.displays) lastEntries[entry.displayID] = &entry;
    std::vector<WallpaperRotationDescriptor> descriptors;
    for (const auto& [id, entry] : lastEntries) {
        if (auto descriptor = descriptorOf(*entry)) descriptors.push_back(*std::move(descriptor));
    }
    return descriptors;
}

std::optional<WallpaperRotationDescriptor> rotationDescriptor(const WallpaperSettings& settings,
                                                              const std::string& displayID) {
    const auto last = std::find_if(settings.displays.rbegin(), settings.displays.rend(),
                                   [&](const auto& entry) { return entry.displayID == displayID; });
    return last == settings.displays.rend() ? std::nullopt : descriptorOf(*last);
}

void WallpaperRotationSchedule::update(std::vector<WallpaperRotationDescriptor> descriptors, WallTime now,
                                       bool resets) {
    std::map<std::string, Entry> updated;
    for (WallpaperRotationDescriptor& descriptor : descriptors) {
        const WallTime latest = after(now, descriptor.interval);
        auto kept = entries.extract(descriptor.displayID);
        if (resets || kept.empty() || kept.mapped().descriptor != descriptor) {
            const WallTime next = after(baseOf(descriptor.mode, now), descriptor.interval);
            const std::string id = descriptor.displayID;
            updated[id] = {std::move(descriptor), std::min(next, latest), 0};
        } else {
            kept.mapped().nextAttemptDate = std::min(kept.mapped().nextAttemptDate, latest);
            updated.insert(std::move(kept));
        }
    }
    entries = std::move(updated);
}

void WallpaperRotationSchedule::record(WallpaperRotationDescriptor descriptor, WallTime now, bool isSuccess) {
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
    Entry& entry = entries[descriptor.displayID];
    entry = {std::move(descriptor), after(now, wait), failures};
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
