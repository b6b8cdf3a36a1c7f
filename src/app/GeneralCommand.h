#pragma once
#include <vector>

#include "app/RecordOptions.h"
#include "app/RemoteErrorNotificationService.h"
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// `quillmar general ...`: what the settings say in general, and other values for them. Main thread.
class GeneralCommand {
public:
    GeneralCommand(AppSettingsModel& settingsModel, RemoteErrorNotificationService& notifications)
        : settingsModel_(settingsModel), notifications_(notifications) {}

    /// `call.arguments` begins with "general".
    Task<ControlReply> run(ControlCall call);

private:
    Task<ControlReply> set(std::vector<std::string> words);

    AppSettingsModel& settingsModel_;
    RemoteErrorNotificationService& notifications_;
};

}  // namespace quillmar
