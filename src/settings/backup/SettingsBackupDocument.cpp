#include "settings/backup/SettingsBackupDocument.h"

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

/// Calls `visit(section, part of the contents, part of the settings)` for each section.
void forEachSection(auto& contents, auto& settings, auto visit) {
    using Section = SettingsBackupSection;
    visit(Section::general, contents.general, settings.general);
    visit(Section::wallpaper, contents.wallpaper, settings.wallpaper);
    visit(Section::lockScreen, contents.lockScreen, settings.lockScreen);
    visit(Section::screensaver, contents.screensaver, settings.screensaver);
    visit(Section::hotCorners, contents.hotCorners, settings.hotCorners);
    visit(Section::customMenu, contents.customMenu, settings.customMenu);
}

}  // namespace

SettingsBackupSections allBackupSections() {
    constexpr auto cases = allCases<SettingsBackupSection>();
    return {cases.begin(), cases.end()};
}

TextKey backupSectionLabel(SettingsBackupSection section) {
    switch (section) {
        case SettingsBackupSection::general: return "General settings"_key;
        case SettingsBackupSection::wallpaper: return "Wallpaper"_key;
        case SettingsBackupSection::lockScreen: return "Lock Screen"_key;
        case SettingsBackupSection::screensaver: return "Screensaver"_key;
        case SettingsBackupSection::hotCorners: return "Hot Corners"_key;
        case SettingsBackupSection::customMenu: break;
    }
    return "Menu"_key;
}

SettingsBackupDocument SettingsBackupDocument::make(const AppSettings& settings,
                                                    const SettingsBackupSections& sections,
                                                    std::string appVersion, WallTime createdAt) {
    SettingsBackupDocument document;
    document.appVersion = std::move(appVersion);
    document.createdAt = createdAt;
    forEachSection(document.contents, settings,
                   [&](SettingsBackupSection section, auto& content, const auto& part) {
                       if (sections.contains(section)) content = part;
                   });
    return document;
}

SettingsBackupSections SettingsBackupDocument::availableSections() const {
    SettingsBackupSections available;
    const AppSettings unused;
    forEachSection(contents, unused, [&](SettingsBackupSection section, const auto& content, const auto&) {
        if (content) available.insert(section);
    });
    return available;
}

AppSettings SettingsBackupDocument::appliedTo(const AppSettings& settings,
                                              const SettingsBackupSections& sections) const {
    AppSettings result = settings;
    forEachSection(contents, result, [&](SettingsBackupSection section, const auto& content, auto& part) {
        if (content && sections.contains(section)) part = *content;
    });
    return result;
}

std::string SettingsBackupError::message(GeneralLanguage language) const {
    switch (case_) {
        case Case::backupTooLarge:
            return localized("This backup is larger than Quillmar's %lld MB safety limit."_key, language,
                             {stored_});
        case Case::incompatibleFormat:
            return localized(
                "This backup uses format %lld, but this build of Quillmar requires format %lld."_key,
                language, {stored_, required_});
        case Case::incompatibleSettingsSchema:
            return localized(
                "This backup uses settings schema %lld, but this build of Quillmar requires schema %lld."_key,
                language, {stored_, required_});
        case Case::emptyBackup: break;
    }
    return localized("This backup does not contain any restorable settings."_key, language);
}

std::string encodeBackup(const SettingsBackupDocument& document) { return json::encode(document); }

SettingsBackupDocument decodeBackup(std::string_view text) {
    using Case = SettingsBackupError::Case;
    auto document = json::decode<SettingsBackupDocument>(text);
    if (document.formatVersion != SettingsBackupDocument::requiredFormatVersion) {
        throw SettingsBackupError(Case::incompatibleFormat, document.formatVersion,
                                  SettingsBackupDocument::requiredFormatVersion);
    }
    if (document.settingsSchemaVersion != AppSettings::requiredSchemaVersion) {
        throw SettingsBackupError(Case::incompatibleSettingsSchema, document.settingsSchemaVersion,
                                  AppSettings::requiredSchemaVersion);
    }
    if (document.availableSections().empty()) throw SettingsBackupError(Case::emptyBackup);
    return document;
}

}  // namespace quillmar
