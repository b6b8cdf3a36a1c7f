#include "panes/ChangelogWindowController.h"

#include "panes/ReleaseNotes.h"
#include "panes/WindowThemes.h"

namespace quillmar {

ChangelogWindowController::ChangelogWindowController(EventBus& notifications,
                                                     const AppSettingsModel& settingsModel,
                                                     ChangelogWindowing& window)
    : settingsModel_(settingsModel),
      window_(window),
      changes_(notifications.observe<AppSettings>(appSettingsDidChange,
                                                  [this](const AppSettings&) { window_.update(page()); })) {
    window_.setWishHandler([this](const std::string& wish) {
        if (wish == closeWish) window_.close();
    });
}

ChangelogPage ChangelogWindowController::page() const {
    const GeneralSettings& general = settingsModel_.settings().general;
    ChangelogPage page{.title = localized("Quillmar Changelog"_key, general.language),
                       .releases = {},
                       .close = localized("Close"_key, general.language),
                       .theme = themeOf(general.appTheme)};
    for (const ChangelogRelease& release : releaseNotes()) {
        auto& shown = page.releases.emplace_back(
            ChangelogPage::Release{.title = localized("Version %@"_key, general.language, {release.version}),
                                   .label = localized(release.label, general.language),
                                   .sections = {}});
        for (const ChangelogSection& section : release.sections) {
            auto& listed = shown.sections.emplace_back(
                ChangelogPage::Section{.title = localized(section.title, general.language), .items = {}});
            for (const TextKey item : section.items)
                listed.items.push_back(localized(item, general.language));
        }
    }
    return page;
}

}  // namespace quillmar
