#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "async/EventBus.h"
#include "settings/records/AppSettings.h"

namespace quillmar {

/// The document of another program took the place of ours.
struct SettingsTakeover {
    AppSettings former;                                   ///< our document until then
    std::optional<std::filesystem::path> unsavedChanges;  ///< where ours is kept, if it was not on disk
};
/// Posted after a valid edit of the file was taken over, and after `appSettingsDidChange`.
inline constexpr NotificationName<SettingsTakeover> settingsWereTakenOver{"QuillmarSettingsWereTakenOver"};
/// Posted with the reason when the file was found to be unreadable, once for each reason.
inline constexpr NotificationName<std::string> settingsFileBroke{"QuillmarSettingsFileBroke"};

}  // namespace quillmar
