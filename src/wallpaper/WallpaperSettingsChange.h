#pragma once
#include <functional>
#include <memory>

#include "display/DisplayInfo.h"
#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperNotices.h"
#include "wallpaper/WallpaperQueue.h"
#include "wallpaper/WallpaperSelectionMemory.h"
#include "wallpaper/WallpaperSettingsTransactionService.h"

namespace quillmar {

using WallpaperSettingsChange = std::function<void(WallpaperSettings&)>;

/// A settings transaction under way, shared by the lines of its displays.
struct WallpaperSettingsChangeInProgress {
    WallpaperSettingsChange change;
    std::shared_ptr<WallpaperTicket> ticket;
    enum class State { waiting, saving, saved, refused } state = State::waiting;
    WaitList saved;
    WallpaperSettings previous;  ///< once it is saved
    WallpaperSettings wanted;    ///< once it is saved
};

/// The settings transaction: saved as one step when the turn of its first display has come, then applied
/// display by display; one that fails is taken back, on screen and in the settings. Main thread.
class WallpaperSettingsChanges {
public:
    WallpaperSettingsChanges(AppSettingsModel& settingsModel, WallpaperSettingsTransactionApplying* applier,
                             WallpaperNotices& notices, WallpaperSelectionMemory& memory)
        : settingsModel_(settingsModel), applier_(applier), notices_(notices), memory_(memory) {}

    /// Saves the change, unless that was done. False, with the ticket answered, when it was refused.
    Task<bool> save(std::shared_ptr<WallpaperSettingsChangeInProgress> change);
    /// Applies the saved change to the display, and takes it back when it fails.
    Task<void> applyTo(DisplayInfo display, std::shared_ptr<WallpaperSettingsChangeInProgress> change);
    /// The display is gone, or under the Lock Screen: the settings keep what they said of it.
    Task<void> refuseFor(WallpaperDisplayApplyResult result,
                         std::shared_ptr<WallpaperSettingsChangeInProgress> change);

private:
    Task<bool> commit(std::function<void(WallpaperSettings&)> mutation);
    Task<void> takeBack(std::string displayID, std::shared_ptr<WallpaperSettingsChangeInProgress> change);
    GeneralLanguage language() const { return settingsModel_.settings().general.language; }

    AppSettingsModel& settingsModel_;
    WallpaperSettingsTransactionApplying* applier_;  ///< null: no transaction can be started
    WallpaperNotices& notices_;
    WallpaperSelectionMemory& memory_;
};

}  // namespace quillmar
