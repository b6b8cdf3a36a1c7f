#pragma once
#include <filesystem>
#include <string>
#include <vector>

#include "async/Executor.h"
#include "commandline/WallpaperModeArguments.h"
#include "control/WallpaperStatus.h"
#include "desktop/DesktopPictures.h"
#include "display/DisplayService.h"
#include "loginitem/LoginItemService.h"
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"
#include "updates/SoftwareUpdateController.h"
#include "wallpaper/WallpaperRotationCoordinator.h"

namespace quillmar {

/// `quillmar wallpaper ...` and `quillmar status` as the running program carries them out: what each display
/// is set to and shows, another mode for a display, the next picture. Main thread.
class WallpaperCommand {
public:
    struct Services {
        AppSettingsModel& settingsModel;
        WallpaperCoordinator& coordinator;
        const WallpaperRotationCoordinator& rotation;
        const WallClock& clock;
        std::string version;
        const DisplayService& displays;
        DesktopPictures& desktop;
        PictureMemory& pictures;
        LoginItemService& loginItem;
        const SoftwareUpdateController& updates;
        Executor& files;  ///< where the user's files are looked at
    };
    explicit WallpaperCommand(Services services) : services_(std::move(services)) {}

    /// Carries out a line that begins with "wallpaper" or "status". Relative paths start from `folder`.
    Task<ControlReply> run(CommandLine line, std::filesystem::path folder);
    /// As it is known here, without a word from the desktop.
    ProgramStatus statusWithoutDesktop() const;

private:
    Task<ControlReply> set(WallpaperModeArguments arguments, std::string display);
    Task<ControlReply> show(HistoryStep step, DisplayIDs displays);
    Task<ControlReply> info(DisplayIDs displays, bool wantsJson) const;
    Task<ProgramStatus> status() const;
    WallpaperStatus statusOf(const DisplayInfo& display) const;
    DisplayIDs matching(const std::string& name) const;
    Task<std::optional<Bytes>> grantFor(std::optional<Url> url);
    Task<std::string> readKey(std::filesystem::path file);
    ControlReply replyOf(const WallpaperApplyBatchResult& batch) const;
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    Services services_;
};

}  // namespace quillmar
