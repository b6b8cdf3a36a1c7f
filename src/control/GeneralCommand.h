#pragma once
#include <functional>

#include "commandline/CommandLine.h"
#include "loginitem/LoginItemService.h"
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// `quillmar general ...`: what the settings say in general, and other values for them. Main thread.
class GeneralCommand {
public:
    struct Services {
        AppSettingsModel& settingsModel;
        LoginItemService& loginItem;
        std::string version;  ///< of this build
        /// Asks for leave to show notifications where that was not asked yet; whether they are shown.
        std::function<Task<bool>()> mayNotify;
    };
    explicit GeneralCommand(Services services) : services_(std::move(services)) {}

    /// Carries out a line that begins with "general".
    Task<ControlReply> run(CommandLine line);

private:
    Task<ControlReply> set(CommandLine line);
    std::string listed() const;

    Services services_;
};

}  // namespace quillmar
