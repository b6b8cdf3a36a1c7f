#pragma once
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "app/WallpaperStatus.h"
#include "display/DisplayService.h"
#include "platform/ControlChannel.h"
#include "platform/DesktopPicture.h"
#include "settings/AppSettingsModel.h"
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
        /// The stored grant that finds a chosen file or folder again; empty when none can be made.
        std::function<Task<std::optional<Bytes>>(Url)> grantFor;
        /// The text of a file without the blanks around it. Throws `std::runtime_error`.
        std::function<Task<std::string>(std::filesystem::path)> readKey;
    };
    explicit WallpaperCommand(Services services) : services_(std::move(services)) {}

    /// `call.arguments` begins with "wallpaper" or "status".
    Task<ControlReply> run(ControlCall call);

private:
    Task<ControlReply> set(std::vector<std::string> words, std::string workingDirectory);
    Task<ControlReply> showNext(std::vector<std::string> words);
    Task<ControlReply> list(std::vector<std::string> words) const;
    Task<ControlReply> status(std::vector<std::string> words) const;
    Task<std::vector<WallpaperStatus>> statuses() const;
    std::vector<DisplayInfo> matching(const std::string& name) const;

    Services services_;
};

}  // namespace quillmar
