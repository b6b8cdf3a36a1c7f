#pragma once
#include "async/MainLoop.h"
#include "control/BackupCommand.h"
#include "control/ChangeStream.h"
#include "control/GeneralCommand.h"
#include "control/PictureCommand.h"
#include "control/UpdateCommand.h"
#include "control/WallpaperCommand.h"

namespace quillmar {

/// Carries out what the command line asks of the running program. Main thread.
class ControlService {
public:
    struct Services {
        MainLoop& loop;
        EventBus& notifications;
        ControlServing& channel;
        BackupSettingsModel::Services backup;
        WallpaperCommand::Services wallpaper;
        PictureCommand::Services picture;
        GeneralCommand::Services general;
        UpdateCommand::Services update;
        std::function<void()> quit;  ///< the user's explicit wish to end
        /// Brings the Settings window to the front, at a section if one is named. Throws as that does.
        std::function<void(const std::string&)> openSettings;
        std::function<bool()> isRecovering;  ///< the start was limited: the settings could not be read
    };
    explicit ControlService(Services services);
    ControlService(const ControlService&) = delete;
    ControlService& operator=(const ControlService&) = delete;

    /// Answers every call: one that fails, or is not understood, with the reason in the settings' language.
    Task<ControlReply> handle(ControlCall call);
    /// To be told when monitors came, went or were moved.
    void displaysDidChange() { changes_.displaysDidChange(); }

private:
    Task<ControlReply> carryOut(CommandLine line, std::string folder);
    /// What a caller of another version is told besides.
    std::string versionNote(const ControlCall& call) const;
    /// What is said beside every answer while the settings file cannot be read: where, and the way out.
    std::string recoveryNote() const;
    Task<void> followSettingsFile();
    Task<ControlReply> showSettings(CommandLine line);
    GeneralLanguage language() const { return backup_.language(); }

    AppSettingsModel& settingsModel_;

    BackupCommand backup_;
    WallpaperCommand wallpaper_;
    PictureCommand picture_;
    GeneralCommand general_;
    UpdateCommand update_;
    const DisplayService& displays_;
    std::string version_;
    ChangeStream changes_;
    EventBus::Observation following_;
    std::function<void()> quit_;
    std::function<void(const std::string&)> openSettings_;
    std::function<bool()> isRecovering_;
    MainLoop& loop_;
    Scheduled quitting_;
};

}  // namespace quillmar
