#pragma once
#include <string>
#include <vector>

#include "async/Executor.h"
#include "commandline/CommandLine.h"
#include "display/DisplayService.h"
#include "history/PictureMemory.h"
#include "platform/AddressOpening.h"
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"
#include "storage/ApplicationDirectories.h"
#include "wallpaper/WallpaperCoordinator.h"

namespace quillmar {

/// `quillmar wallpaper open|favourite|trash`: what a person wants of the picture that a display shows. Main
/// thread.
class PictureCommand {
public:
    struct Services {
        AppSettingsModel& settingsModel;
        WallpaperCoordinator& coordinator;
        const DisplayService& displays;
        PictureMemory& pictures;
        AddressOpening& addresses;
        Executor& files;
        Environment environment;  ///< says where the user's pictures lie
    };
    explicit PictureCommand(Services services) : services_(std::move(services)) {}

    /// Whether it is the one for the line.
    static bool carriesOut(const CommandLine& line);
    Task<ControlReply> run(CommandLine line);

private:
    struct Target {
        DisplayInfo display;
        ShownPicture picture;
    };
    std::vector<Target> targets(const CommandLine& line) const;
    Task<void> open(Target target, ControlReply* reply);
    Task<void> keep(Target target, ControlReply* reply);
    Task<void> trash(Target target, ControlReply* reply);
    Task<void> goOn(DisplayIDs displays, ControlReply* reply);
    bool wasChosen(const DisplayInfo& display, const ShownPicture& picture) const;
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    Services services_;
};

}  // namespace quillmar
