#pragma once
#include <optional>
#include <set>
#include <string>

#include "base/Localization.h"
#include "base/WallTime.h"
#include "settings/records/AppSettings.h"

namespace quillmar {

/// The unit of every choice around backups: a section of the settings document.
enum class SettingsBackupSection { general, wallpaper, lockScreen, screensaver, hotCorners, customMenu };
constexpr auto enumNames(SettingsBackupSection) {
    return std::to_array<std::string_view>(
        {"general", "wallpaper", "lockScreen", "screensaver", "hotCorners", "customMenu"});
}
using SettingsBackupSections = std::set<SettingsBackupSection>;

/// Every section, as it is chosen at first.
SettingsBackupSections allBackupSections();
/// What the user calls a section: "General settings".
TextKey backupSectionLabel(SettingsBackupSection section);

/// The sections of a backup; one that was not chosen is absent.
struct SettingsBackupContents {
    std::optional<GeneralSettings> general;
    std::optional<WallpaperSettings> wallpaper;
    std::optional<LockScreenSettings> lockScreen;
    std::optional<ManagedScreensaverSettings> screensaver;
    std::optional<HotCornerSettings> hotCorners;
    std::optional<CustomMenuSettings> customMenu;

    bool operator==(const SettingsBackupContents&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("general", self.general)
            .optional("wallpaper", self.wallpaper)
            .optional("lockScreen", self.lockScreen)
            .optional("screensaver", self.screensaver)
            .optional("hotCorners", self.hotCorners)
            .optional("customMenu", self.customMenu);
    }
};

/// A backup file: chosen sections of the settings and what wrote them. Settings alone, never the media they
/// name.
struct SettingsBackupDocument {
    /// The one format that is written and accepted.
    static constexpr int requiredFormatVersion = 1;

    int formatVersion = requiredFormatVersion;
    int settingsSchemaVersion = AppSettings::requiredSchemaVersion;
    std::string appVersion;
    WallTime createdAt{};
    SettingsBackupContents contents;

    /// A backup of those sections of the settings.
    static SettingsBackupDocument make(const AppSettings& settings, const SettingsBackupSections& sections,
                                       std::string appVersion, WallTime createdAt);
    /// The sections that the document holds.
    SettingsBackupSections availableSections() const;
    /// A copy of the settings with those sections replaced that are both wanted and held; all else stays.
    AppSettings appliedTo(const AppSettings& settings, const SettingsBackupSections& sections) const;

    bool operator==(const SettingsBackupDocument&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("formatVersion", self.formatVersion)
            .required("settingsSchemaVersion", self.settingsSchemaVersion)
            .required("appVersion", self.appVersion)
            .required("createdAt", self.createdAt)
            .required("contents", self.contents);
    }
};

/// Why a file is not a backup that can be restored.
class SettingsBackupError final : public AppLocalizableError {
public:
    enum class Case { backupTooLarge, incompatibleFormat, incompatibleSettingsSchema, emptyBackup };

    /// `stored` is what the file holds, or the limit in megabytes of `backupTooLarge`.
    explicit SettingsBackupError(Case errorCase, int stored = 0, int required = 0)
        : case_(errorCase), stored_(stored), required_(required) {}
    Case errorCase() const { return case_; }
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    int stored_;
    int required_;
};

/// Throws `JsonRecordError` for what JSON cannot hold.
std::string encodeBackup(const SettingsBackupDocument& document);
/// Throws `JsonRecordError` for a text that cannot be read, `SettingsBackupError` for one that cannot be
/// restored.
SettingsBackupDocument decodeBackup(std::string_view text);

}  // namespace quillmar
