#pragma once
#include "commandline/CommandLine.h"
#include "platform/ControlChannel.h"
#include "updates/SoftwareUpdateController.h"

namespace quillmar {

/// `quillmar update ...`: a look for a newer version now, and what is done about one without being asked.
/// Main thread.
class UpdateCommand {
public:
    struct Services {
        AppSettingsModel& settingsModel;
        SoftwareUpdateController& updates;
        std::string version;  ///< of this build
    };
    explicit UpdateCommand(Services services) : services_(std::move(services)) {}

    /// Carries out a line that begins with "update".
    Task<ControlReply> run(CommandLine line);

private:
    Task<ControlReply> set(CommandLine line);

    Services services_;
};

/// For people: that there is such a version, where it is told of, where its file lies.
std::string updateAsText(const AvailableUpdate& update, GeneralLanguage language);

}  // namespace quillmar
