#pragma once
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// The answer to a command whose change of the settings did not reach the disk and was taken back.
inline ControlReply unsavedReply(const AppSettingsModel& settingsModel) {
    return {.status = 1,
            .errors = "The settings could not be saved and stay as they were: " +
                      settingsModel.saveError().value_or("unknown error") + "\n"};
}

}  // namespace quillmar
