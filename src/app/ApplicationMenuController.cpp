#include "app/ApplicationMenuController.h"

namespace quillmar {
namespace {

using Command = MainMenuCommand;
using Modifiers = MainMenuItem::Modifiers;

class MenuBuilder {
public:
    explicit MenuBuilder(GeneralLanguage language) : language_(language) {}

    std::string text(TextKey title) const { return localized(title, language_); }
    MainMenuItem item(TextKey title, Command command, std::string key = {},
                      Modifiers modifiers = Modifiers::command, bool isEnabled = true) const {
        return {.title = text(title),
                .key = std::move(key),
                .modifiers = modifiers,
                .command = command,
                .isEnabled = isEnabled};
    }
    MainMenuItem enabledIf(bool isEnabled, TextKey title, Command command, std::string key = {}) const {
        return item(title, command, std::move(key), Modifiers::command, isEnabled);
    }
    static MainMenuItem menu(std::string title, MainMenu items, Command command = Command::none) {
        return {.kind = MainMenuItem::Kind::submenu,
                .title = std::move(title),
                .command = command,
                .items = std::move(items)};
    }

private:
    GeneralLanguage language_;
};

MainMenuItem applicationMenu(const MenuBuilder& build, const std::string& applicationName, bool isReady,
                             bool canCheckForUpdates) {
    const auto separator = MainMenuItem::separator();
    return build.menu(
        applicationName,
        {build.enabledIf(isReady, "About Quillmar"_key, Command::openAbout),
         build.enabledIf(isReady && canCheckForUpdates, "Check for Updates…"_key, Command::checkForUpdates),
         separator, build.enabledIf(isReady, "Settings…"_key, Command::openSettings, ","), separator,
         build.menu(build.text("Services"_key), {}, Command::services), separator,
         build.item("Hide Quillmar"_key, Command::hide, "h"),
         build.item("Hide Others"_key, Command::hideOthers, "h", Modifiers::commandOption),
         build.item("Show All"_key, Command::showAll), separator,
         build.item("Close Window"_key, Command::closeActiveWindow, "q")});
}

MainMenuItem editMenu(const MenuBuilder& build) {
    return build.menu(
        build.text("Edit"_key),
        {build.item("Undo"_key, Command::undo, "z"),
         build.item("Redo"_key, Command::redo, "Z", Modifiers::commandShift), MainMenuItem::separator(),
         build.item("Cut"_key, Command::cut, "x"), build.item("Copy"_key, Command::copy, "c"),
         build.item("Paste"_key, Command::paste, "v"),
         build.item("Select All"_key, Command::selectAll, "a")});
}

MainMenuItem windowMenu(const MenuBuilder& build) {
    return build.menu(build.text("Window"_key),
                      {build.item("Close"_key, Command::closeWindow, "w"),
                       build.item("Minimize"_key, Command::minimizeWindow, "m"),
                       build.item("Zoom"_key, Command::zoomWindow), MainMenuItem::separator(),
                       build.item("Bring All to Front"_key, Command::bringAllToFront)});
}

}  // namespace

MainMenu makeMainMenu(const std::string& applicationName, GeneralLanguage language, bool isReady,
                      bool canCheckForUpdates) {
    const MenuBuilder build(language);
    return {applicationMenu(build, applicationName, isReady, canCheckForUpdates), editMenu(build),
            windowMenu(build)};
}

void ApplicationMenuController::start(EventBus& notifications, const AppSettingsModel& model) {
    observation_ =
        notifications.observe<AppSettings>(appSettingsDidChange, [this, &model](const AppSettings& settings) {
            settingsDidChange(settings.general.language, model.isLoaded());
        });
    settingsDidChange(model.settings().general.language, model.isLoaded());
}

void ApplicationMenuController::settingsDidChange(GeneralLanguage language, bool isReady) {
    if (installedLanguage_ == language && installedReadiness_ == isReady) return;
    installedLanguage_ = language;
    installedReadiness_ = isReady;
    install_(makeMainMenu(applicationName_, language, isReady, false));
}

}  // namespace quillmar
