#include "panes/FirstRunWindowController.h"

#include <algorithm>
#include <utility>

#include "base/Enum.h"
#include "panes/SettingsSections.h"
#include "panes/WindowThemes.h"

namespace quillmar {

FirstRunWindowController::FirstRunWindowController(Services services)
    : services_(std::move(services)),
      changes_(services_.notifications.observe<AppSettings>(
          appSettingsDidChange, [this](const AppSettings&) { services_.window.update(page()); })) {
    services_.window.setWishHandler([this](const std::string& wish) { act(wish); });
}

WelcomePage FirstRunWindowController::page() const {
    WelcomePage page{
        .title = localized("Welcome to Quillmar"_key, language()),
        .iconName = "com.quillmar.Quillmar",
        .badge = localized("FIRST RUN"_key, language()),
        .heading = localized("Welcome to Quillmar"_key, language()),
        .text = localized(firstRunPromise(), language()),
        .question = localized("What would you like to set up first?"_key, language()),
        .footer = localized("You can return to Settings anytime by starting Quillmar again."_key, language()),
        .notNow = localized("Not Now"_key, language()),
        .openSettings = localized("Open Settings"_key, language()),
        .theme = themeOf(services_.settingsModel.settings().general.appTheme)};
    for (const FirstRunChoice& choice : firstRunChoices()) {
        const SettingsSectionRow row = rowOf(choice.section);
        page.choices.push_back({.id = std::string(enumName(choice.section)),
                                .title = localized(row.label, language()),
                                .text = localized(choice.text, language()),
                                .iconName = std::string(row.iconName)});
    }
    return page;
}

void FirstRunWindowController::show(std::function<void()> onDismiss) {
    services_.window.show(page());
    onDismiss_ = std::move(onDismiss);
    completionRecorded_ = false;
}

void FirstRunWindowController::bringToFront() { services_.window.show(page()); }

void FirstRunWindowController::settingsAreOpening() {
    if (isVisible()) finish(AnalyticsWelcomeTask::settings);
}

void FirstRunWindowController::act(const std::string& wish) {
    if (wish == WelcomePage::notNowWish || wish == closeWish) return finish(AnalyticsWelcomeTask::skip);
    if (wish == WelcomePage::openSettingsWish) {
        finish(AnalyticsWelcomeTask::settings);
        return services_.openSettings("");
    }
    const auto choices = firstRunChoices();
    const auto chosen =
        std::ranges::find_if(choices, [&](const auto& choice) { return enumName(choice.section) == wish; });
    if (chosen == choices.end()) return;
    finish(chosen->task);
    services_.openSettings(wish);
}

void FirstRunWindowController::finish(AnalyticsWelcomeTask task) {
    if (!std::exchange(completionRecorded_, true))
        services_.sendAnalytics("welcome_task_" + std::string(enumName(task)));
    services_.window.close();
    if (const auto onDismiss = std::exchange(onDismiss_, nullptr)) onDismiss();
}

}  // namespace quillmar
