#pragma once
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// The answer to a command whose change of the settings did not reach the disk and was taken back.
inline ControlReply unsavedReply(const AppSettingsModel& settingsModel) {
    const GeneralLanguage language = settingsModel.settings().general.language;
    return {.status = 1,
            .errors = localized("The settings could not be saved and stay as they were: %@"_key, language,
                                {settingsModel.saveError().value_or("")}) +
                      "\n"};
}

}  // namespace quillmar
