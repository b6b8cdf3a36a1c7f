#include "panes/AboutPane.h"

#include <fmt/format.h>

#include "diagnostics/OperatingSystemVersion.h"

namespace quillmar {
namespace {

/// A row that opens what a bundle key names.
struct Link {
    const char* row;
    const char* bundleKey;
    TextKey title;
};
constexpr std::array<Link, 2> links{{
    {"homePage", "QuillmarHomePage", "Website"_key},
    {"contactPage", "QuillmarContactPage", "Contact"_key},
}};

std::string valueOf(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    return found == environment.end() || found->second.empty() ? "unknown" : found->second;
}

}  // namespace

SettingsRow AboutPane::actionRow(std::string id, TextKey title, TextKey subtitle, TextKey button) const {
    return {.id = std::move(id),
            .title = localized(title, language()),
            .subtitle = localized(subtitle, language()),
            .control = SettingsRow::Action{localized(button, language())}};
}

SettingsPane AboutPane::content() const {
    SettingsPane pane;
    pane.hero =
        SettingsHero{"com.quillmar.Quillmar", services_.bundle.displayName(),
                     localized("Version %@"_key, language(), {services_.bundle.semanticVersion("unknown")})};
    SettingsGroup about{.id = "about"};
    about.rows.push_back(
        {.id = "licence",
         .title = localized("Licence"_key, language()),
         .subtitle = localized("MIT: free to use, to change and to pass on"_key, language())});
    for (const Link& link : links) {
        const auto address = services_.bundle.value(link.bundleKey);
        if (!address) continue;
        about.rows.push_back({.id = link.row,
                              .title = localized(link.title, language()),
                              .subtitle = *address,
                              .control = SettingsRow::Action{localized("Open"_key, language())}});
    }
    about.rows.push_back(
        actionRow("changelog", "Changelog"_key, "What each version of Quillmar brought"_key, "Read"_key));
    SettingsGroup help{.id = "help", .title = localized("When Something Is Wrong"_key, language())};
    help.rows = {actionRow("copyDiagnostics", "Diagnostics"_key,
                           "Version, system and displays, to be pasted into a report"_key, "Copy"_key),
                 actionRow("openLogs", "Logs"_key, "One file a day, kept for a week"_key, "Open Folder"_key)};
    pane.groups = {std::move(about), std::move(help)};
    for (SettingsGroup& group : pane.groups) {
        for (SettingsRow& row : group.rows) {
            if (row.id != noted_) continue;
            row.subtitle = note_;
            row.isWarning = isWarning_;
        }
    }
    return pane;
}

void AboutPane::act(const SettingsIntent& intent) {
    for (const Link& link : links) {
        if (intent.row != link.row) continue;
        const auto text = services_.bundle.value(link.bundleKey);
        if (const auto address = text ? Url::parse(*text) : std::nullopt)
            tasks_.spawn(open(intent.row, *address));
    }
    if (intent.row == "changelog") services_.openChangelog();
    if (intent.row == "openLogs") {
        const auto folder = applicationSupportDirectoryOrNowhere(services_.environment) / "Logs";
        tasks_.spawn(open(intent.row, Url::fromFilePath(folder)));
    }
    if (intent.row == "copyDiagnostics") {
        services_.clipboard.setText(diagnostics());
        note(intent.row, localized("Copied."_key, language()), false);
    }
}

Task<void> AboutPane::open(std::string row, Url address) {
    const bool isOpened = co_await services_.addresses.open(address);
    note(isOpened ? "" : row, localized("No program opens %@."_key, language(), {address.string()}), true);
}

void AboutPane::note(std::string row, std::string text, bool isWarning) {
    noted_ = std::move(row);
    note_ = std::move(text);
    isWarning_ = isWarning;
    changed_();
}

std::string AboutPane::diagnostics() const {
    const AppSettingsModel& model = services_.settingsModel;
    std::string text = fmt::format("Quillmar {}\nSystem: {}\nDesktop: {}, session {}\nSettings: {}\n",
                                   services_.bundle.semanticVersion("unknown"), operatingSystemVersionText(),
                                   valueOf(services_.environment, "XDG_CURRENT_DESKTOP"),
                                   valueOf(services_.environment, "XDG_SESSION_TYPE"),
                                   !model.canPersist() ? "cannot be read"
                                   : model.saveError() ? "cannot be saved"
                                                       : "in order");
    for (const DisplayInfo& display : services_.displays.displays()) {
        text += fmt::format("Display: {:g}x{:g} at {:g},{:g}, scale {:g}{}\n", display.frame.width,
                            display.frame.height, display.frame.x, display.frame.y, display.scaleFactor,
                            display.isMain ? ", main" : "");
    }
    return text;
}

}  // namespace quillmar
