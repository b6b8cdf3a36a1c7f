#include "panes/SettingsWindowModel.h"

#include <utility>

#include "base/Enum.h"
#include "panes/WindowThemes.h"

namespace quillmar {
SettingsWindowModel::SettingsWindowModel(Services services)
    : loop_(services.loop),
      settingsModel_(services.backup.settingsModel),
      quit_(std::move(services.quit)),
      isRecovering_(std::move(services.isRecovering)),
      general_(loop_, std::move(services.general), services.alerts, [this] { changed(); }),
      wallpaper_(services.wallpaper, services.alerts, services.files, [this] { changed(); }),
      backup_(loop_, std::move(services.backup), services.alerts, services.files, [this] { changed(); }),
      about_(loop_, std::move(services.about), [this] { changed(); }),
      unsavedChanges_(loop_, services.alerts, [this] { return language(); }),
      changes_(services.notifications.observe<AppSettings>(appSettingsDidChange, [this](const AppSettings&) {
          wallpaper_.settingsDidChange();
          changed();
      })) {
    unsavedChanges_.add(SettingsSection::wallpaper, wallpaper_.unsavedDraft());
}

SettingsFrame SettingsWindowModel::frame() const {
    SettingsFrame frame{.title = localized("Quillmar Settings"_key, language()),
                        .current = std::string(enumName(section_)),
                        .banner = banner(),
                        .theme = themeOf(settingsModel_.settings().general.appTheme),
                        .back = localized("Back"_key, language()),
                        .menu = localized("Main Menu"_key, language()),
                        .about = localized("About Quillmar"_key, language()),
                        .quit = localized("Quit Quillmar"_key, language())};
    for (const SettingsSection section : allCases<SettingsSection>()) {
        const SettingsSectionRow row = rowOf(section);
        frame.sections.push_back(
            {std::string(enumName(section)), localized(row.label, language()), std::string(row.iconName)});
    }
    return frame;
}

std::string SettingsWindowModel::banner() const {
    const std::string reason = settingsModel_.loadError().value_or("");
    if (!settingsModel_.canPersist()) {
        return localized(
            "The settings file cannot be read, so nothing is saved until you restore a backup, reset all settings or mend the file. %@"_key,
            language(), {reason});
    }
    if (isRecovering_()) {
        return localized(
            "The settings are in order again. Quit Quillmar and start it once more, and it goes on with them."_key,
            language());
    }
    return settingsModel_.saveError().value_or("");
}

const PaneModel& SettingsWindowModel::paneOf(SettingsSection section) const {
    switch (section) {
        case SettingsSection::general: return general_;
        case SettingsSection::wallpaper: return wallpaper_;
        case SettingsSection::backup: return backup_;
        case SettingsSection::about: return about_;
    }
    return general_;
}

PaneModel& SettingsWindowModel::paneOf(SettingsSection section) {
    return const_cast<PaneModel&>(std::as_const(*this).paneOf(section));
}

void SettingsWindowModel::navigate(const std::string& section) {
    const auto wanted = enumFromName<SettingsSection>(section);
    if (!wanted || *wanted == section_) {
        paneOf(section_).didAppear();
        return;
    }
    unsavedChanges_.leave(section_, [this, wanted] {
        paneOf(std::exchange(section_, *wanted)).didDisappear();
        paneOf(section_).didAppear();
        changed();
    });
    // The sidebar may have gone ahead; it comes back where the user stays.
    changed();
}

void SettingsWindowModel::act(SettingsIntent intent) { paneOf(section_).act(intent); }

void SettingsWindowModel::setExpanded(const std::string& group, bool isExpanded) {
    paneOf(section_).setExpanded(group, isExpanded);
}

void SettingsWindowModel::requestClose(std::function<void()> close) {
    unsavedChanges_.leave(section_, [this, close = std::move(close)] {
        close();
        paneOf(section_).didDisappear();
        backup_.reset();
        about_.reset();
    });
}

void SettingsWindowModel::quit() { unsavedChanges_.leave(section_, quit_); }

void SettingsWindowModel::changed() {
    telling_ = Scheduled(loop_, [this] {
        if (handler_) handler_();
    });
}

}  // namespace quillmar
