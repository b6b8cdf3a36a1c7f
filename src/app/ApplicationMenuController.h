#pragma once
#include <functional>
#include <optional>
#include <string>

#include "async/EventBus.h"
#include "platform/Menu.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// What an entry of the main menu asks for.
enum class MainMenuCommand {
    none,
    openAbout,
    checkForUpdates,
    openSettings,
    services,
    hide,
    hideOthers,
    showAll,
    closeActiveWindow,
    undo,
    redo,
    cut,
    copy,
    paste,
    selectAll,
    closeWindow,
    minimizeWindow,
    zoomWindow,
    bringAllToFront,
};
using MainMenuItem = MenuItem<MainMenuCommand>;
using MainMenu = std::vector<MainMenuItem>;

/// The main menu: entries that need the settings are enabled once these are loaded. `applicationName` titles
/// the first menu.
MainMenu makeMainMenu(const std::string& applicationName, GeneralLanguage language, bool isReady,
                      bool canCheckForUpdates);

/// Keeps the main menu in the settings' language. `install` shows a menu where the desktop has a place for
/// one.
class ApplicationMenuController {
public:
    using Install = std::function<void(const MainMenu&)>;

    ApplicationMenuController(std::string applicationName, Install install)
        : applicationName_(std::move(applicationName)), install_(std::move(install)) {}

    /// Installs the menu for the model's present state and follows its changes from then on.
    void start(EventBus& notifications, const AppSettingsModel& model);

private:
    void settingsDidChange(GeneralLanguage language, bool isReady);

    std::string applicationName_;
    Install install_;
    std::optional<GeneralLanguage> installedLanguage_;
    std::optional<bool> installedReadiness_;
    EventBus::Observation observation_;
};

}  // namespace quillmar
