#include "settings/records/CustomMenuSettings.h"

namespace quillmar {
namespace {

/// What people look for first, with the desktop entries that stand for it, the likeliest desktop's first.
struct Role {
    const char* title;
    std::vector<const char*> entries;
};

std::vector<Role> everydayRoles() {
    return {{"Files",
             {"org.gnome.Nautilus.desktop", "org.kde.dolphin.desktop", "thunar.desktop", "nemo.desktop",
              "caja-browser.desktop", "pcmanfm-qt.desktop", "pcmanfm.desktop"}},
            {"Web Browser",
             {"firefox.desktop", "firefox-esr.desktop", "chromium.desktop", "google-chrome.desktop",
              "org.gnome.Epiphany.desktop", "org.kde.falkon.desktop"}},
            {"Terminal",
             {"org.gnome.Terminal.desktop", "org.gnome.Console.desktop", "org.kde.konsole.desktop",
              "xfce4-terminal.desktop", "mate-terminal.desktop", "qterminal.desktop", "lxterminal.desktop",
              "debian-xterm.desktop"}},
            {"Text Editor",
             {"org.gnome.TextEditor.desktop", "org.gnome.gedit.desktop", "org.kde.kate.desktop",
              "org.kde.kwrite.desktop", "org.xfce.mousepad.desktop", "xed.desktop", "pluma.desktop",
              "featherpad.desktop"}},
            {"Calculator",
             {"org.gnome.Calculator.desktop", "org.kde.kcalc.desktop", "mate-calc.desktop",
              "galculator.desktop", "qalculate-gtk.desktop"}}};
}

CustomMenuItem folder(std::string title, std::vector<CustomMenuItem> children) {
    return {.id = Uuid::random(),
            .type = MenuItemType::folder,
            .title = std::move(title),
            .children = std::move(children)};
}

CustomMenuItem shortcut(std::string title, ShortcutTarget target) {
    return {.id = Uuid::random(),
            .type = MenuItemType::shortcut,
            .title = std::move(title),
            .target = std::move(target)};
}

CustomMenuItem separator() { return {.id = Uuid::random(), .type = MenuItemType::separator, .title = {}}; }

std::vector<CustomMenuItem> everydayApplications(const std::filesystem::path& applications) {
    std::vector<CustomMenuItem> shortcuts;
    for (const Role& role : everydayRoles()) {
        for (const char* entry : role.entries) {
            const std::filesystem::path file = applications / entry;
            std::error_code unreadable;  // a folder that cannot be read offers nothing
            if (!std::filesystem::exists(file, unreadable)) continue;
            shortcuts.push_back(shortcut(role.title, ShortcutTarget::application(Url::fromFilePath(file))));
            break;
        }
    }
    return shortcuts;
}

std::vector<CustomMenuItem> webPages(const BundleInfo& bundle) {
    std::vector<CustomMenuItem> shortcuts;
    const auto home = Url::parse(bundle.value("QuillmarHomePage").value_or(""));
    if (home) shortcuts.push_back(shortcut("Quillmar", ShortcutTarget::webURL(*home)));
    shortcuts.push_back(shortcut("Google", ShortcutTarget::webURL(*Url::parse("https://www.google.com/"))));
    return shortcuts;
}

}  // namespace

CustomMenuSettings defaultCustomMenu(const BundleInfo& bundle, const std::filesystem::path& applications) {
    const CustomMenuItem place =
        shortcut("Applications", ShortcutTarget::folder(Url::fromFilePath(applications)));
    return {{folder("Apps", everydayApplications(applications)), separator(), folder("Places", {place}),
             separator(), folder("Web", webPages(bundle))}};
}

}  // namespace quillmar
