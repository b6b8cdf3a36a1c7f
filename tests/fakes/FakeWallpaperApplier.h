#pragma once
#include <map>
#include <set>
#include <string>
#include <vector>

#include "async/WaitList.h"
#include "modes/WallpaperApplicationError.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

/// Displays that a test can make refuse. `shown` says what each shows: a colour, or what was there before.
class FakeWallpaperApplier final : public WallpaperTransactionOperationApplying {
public:
    std::map<std::string, std::string> shown;
    std::vector<std::string>
        calls;  ///< "apply A #111111", "prepare A", "set A #111111", "capture A", "restore A"
    WallpaperApplyOutcome outcome;  ///< of every application
    bool isAway = false;            ///< no display is there any more when it is set

    void preparingFails(std::string displayID) { unprepared_.insert(std::move(displayID)); }
    /// Setting this colour on this display fails after the display was changed.
    void settingFails(std::string displayID, std::string color) { unset_.insert(displayID + " " + color); }
    void capturingFails(std::string displayID) { uncaptured_.insert(std::move(displayID)); }
    void restoringFails(std::string displayID) { unrestored_.insert(std::move(displayID)); }
    /// All displays, or one alone, wait before they are set.
    void hold(const std::string& displayID = {}) {
        isHeld_ = true;
        heldDisplay_ = displayID;
    }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

    Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) override {
        calls.push_back("apply " + request.display.id + " " + color(request.mode));
        while (isHeld(request)) co_await held_.wait();
        if (isAway)
            throw WallpaperApplicationError(WallpaperApplicationError::Case::unavailableDisplay,
                                            request.display.id);
        set(request);
        co_return outcome;
    }
    Task<PreparedWallpaperApplication> prepare(WallpaperApplyRequest request) override {
        calls.push_back("prepare " + request.display.id);
        if (unprepared_.contains(request.display.id)) throw std::runtime_error("cannot prepare");
        co_return PreparedWallpaperApplication{std::move(request), nullptr};
    }
    Task<WallpaperApplyOutcome> applyPrepared(PreparedWallpaperApplication application) override {
        calls.push_back("set " + application.request.display.id + " " + color(application.request.mode));
        while (isHeld(application.request)) co_await held_.wait();
        set(application.request);
        co_return outcome;
    }
    Task<WallpaperDesktopSnapshot> captureDesktop(std::string displayID) override {
        calls.push_back("capture " + displayID);
        if (uncaptured_.contains(displayID)) {
            throw WallpaperApplicationError(WallpaperApplicationError::Case::desktopSnapshotUnavailable,
                                            displayID);
        }
        co_return WallpaperDesktopSnapshot{
            displayID, shown[displayID], {}, CacheFileLease(cacheFiles_, shown[displayID])};
    }
    Task<void> restoreDesktop(WallpaperDesktopSnapshot snapshot) override {
        calls.push_back("restore " + snapshot.displayID);
        if (unrestored_.contains(snapshot.displayID)) throw std::runtime_error("cannot restore");
        shown[snapshot.displayID] = snapshot.image.string();
        co_return;
    }

private:
    static std::string color(const WallpaperMode& mode) {
        const auto* solid = std::get_if<SolidColorPresentationSettings>(&mode.value);
        return solid ? solid->hexColor : std::string(enumName(mode.kind()));
    }
    bool isHeld(const WallpaperApplyRequest& request) const {
        return isHeld_ && (heldDisplay_.empty() || heldDisplay_ == request.display.id);
    }
    void set(const WallpaperApplyRequest& request) {
        const std::string wanted = color(request.mode);
        if (wanted != "disabled") shown[request.display.id] = wanted;
        if (unset_.contains(request.display.id + " " + wanted)) throw std::runtime_error("cannot set");
    }

    CacheFileProtection cacheFiles_;
    std::set<std::string> unprepared_;
    std::set<std::string> unset_;
    std::set<std::string> uncaptured_;
    std::set<std::string> unrestored_;
    bool isHeld_ = false;
    std::string heldDisplay_;
    WaitList held_;
};

}  // namespace quillmar
