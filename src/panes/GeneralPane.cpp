#include "panes/GeneralPane.h"

#include <algorithm>

#include "base/Enum.h"
#include "panes/PaneAlerts.h"

namespace quillmar {
namespace {

/// What a person calls a setting.
struct SettingText {
    std::string_view setting;
    TextKey title;
    std::optional<TextKey> subtitle = {};
};
struct GroupText {
    std::string_view id;
    TextKey title;
    std::vector<SettingText> settings;
};

const std::vector<GroupText>& groupTexts() {
    static const std::vector<GroupText> groups = {
        {"appearance",
         "Appearance"_key,
         {{"language", "Language"_key},
          {"appTheme", "Theme"_key, "Use the system appearance or always use Light or Dark."_key}}},
        {"start",
         "Start"_key,
         {{"launchAtLogin", "Start at login"_key},
          {"showChangelogOnUpdate", "Show what is new after an update"_key}}},
        {"wallpapers",
         "Wallpapers"_key,
         {{"pauseRotations", "Pause"_key, "Pictures do not change by themselves meanwhile."_key},
          {"showRemoteErrorNotifications", "Notifications"_key,
           "Tell me when a service has no picture for a display."_key}}},
        {"statusIcon",
         "Panel Icon"_key,
         {{"showColorfulStatusIcon", "Colorful icon"_key},
          {"leftClick", "Click"_key},
          {"doubleClick", "Double click"_key},
          {"middleClick", "Middle click"_key}}},
    };
    return groups;
}

std::string labelOf(GeneralLanguage value, GeneralLanguage) {
    // Each in its own words, so that whoever does not read the present one finds the way back.
    return value == GeneralLanguage::english ? "English" : "Português";
}

std::string labelOf(AppTheme value, GeneralLanguage language) {
    switch (value) {
        case AppTheme::automatic: return localized("Automatic"_key, language);
        case AppTheme::light: return localized("Light"_key, language);
        case AppTheme::dark: return localized("Dark"_key, language);
    }
    return {};
}

std::string labelOf(StatusIconClickAction value, GeneralLanguage language) {
    switch (value) {
        case StatusIconClickAction::disabled: return localized("Nothing"_key, language);
        case StatusIconClickAction::openSettings: return localized("Open Settings"_key, language);
        case StatusIconClickAction::openCustomMenu: return localized("Open the Menu"_key, language);
        case StatusIconClickAction::toggleAllScreensavers:
            return localized("Toggle All Screensavers"_key, language);
    }
    return {};
}

/// There are no screensavers yet; where settings name them already they are shown as they stand.
template <NamedEnum E>
bool isOffered(E value, E chosen) {
    if constexpr (std::is_same_v<E, StatusIconClickAction>)
        return value == chosen || value != StatusIconClickAction::toggleAllScreensavers;
    return true;
}

/// Finds a setting and says with what control it is changed, and what its choices are called in the file.
class ControlOf {
public:
    ControlOf(std::string_view setting, GeneralLanguage language) : setting_(setting), language_(language) {}

    decltype(SettingsRow::control) control;
    std::vector<std::string_view> words;

    ControlOf& required(std::string_view key, bool value) {
        if (key == setting_) control = SettingsRow::Toggle{value};
        return *this;
    }
    template <NamedEnum E>
    ControlOf& required(std::string_view key, E chosen) {
        if (key != setting_) return *this;
        SettingsRow::Choice choice;
        for (const E value : allCases<E>()) {
            if (!isOffered(value, chosen)) continue;
            if (value == chosen) choice.chosen = choice.choices.size();
            choice.choices.push_back(labelOf(value, language_));
            words.push_back(enumName(value));
        }
        control = std::move(choice);
        return *this;
    }
    ControlOf& required(std::string_view, const StatusIconClickBehavior& clicks) {
        StatusIconClickBehavior::describe(clicks, *this);
        return *this;
    }
    ControlOf& required(std::string_view, const MagicMouseMiddleClickSettings&) { return *this; }

private:
    std::string_view setting_;
    GeneralLanguage language_;
};

ControlOf controlOf(std::string_view setting, const GeneralSettings& settings) {
    ControlOf found(setting, settings.language);
    GeneralSettings::describe(settings, found);
    return found;
}

/// What is given to the setting; empty where the wish does not fit its control.
std::string valueFor(const SettingsIntent& intent, const GeneralSettings& settings) {
    const ControlOf found = controlOf(intent.row, settings);
    if (const bool* isOn = std::get_if<bool>(&intent.value);
        isOn && std::holds_alternative<SettingsRow::Toggle>(found.control))
        return *isOn ? "true" : "false";
    const auto* index = std::get_if<std::size_t>(&intent.value);
    return index && *index < found.words.size() ? std::string(found.words[*index]) : std::string();
}

}  // namespace

GeneralPane::GeneralPane(MainLoop& loop, GeneralCommand::Services services, AlertPresenting& alerts,
                         std::function<void()> changed)
    : settingsModel_(services.settingsModel),
      command_(std::move(services)),
      alerts_(alerts),
      changed_(std::move(changed)),
      tasks_(loop) {}

SettingsPane GeneralPane::content() const {
    const GeneralSettings& settings = settingsModel_.settings().general;
    SettingsPane pane;
    for (const GroupText& texts : groupTexts()) {
        SettingsGroup group{.id = std::string(texts.id), .title = localized(texts.title, settings.language)};
        for (const SettingText& text : texts.settings) {
            SettingsRow row{.id = std::string(text.setting),
                            .title = localized(text.title, settings.language)};
            if (text.subtitle) row.subtitle = localized(*text.subtitle, settings.language);
            if (const auto note = notes_.find(row.id); note != notes_.end()) {
                row.subtitle = note->second;
                row.isWarning = true;
            }
            row.control = controlOf(text.setting, settings).control;
            row.isEnabled = settingsModel_.canPersist();
            group.rows.push_back(std::move(row));
        }
        pane.groups.push_back(std::move(group));
    }
    return pane;
}

void GeneralPane::act(const SettingsIntent& intent) {
    std::string value = valueFor(intent, settingsModel_.settings().general);
    if (!value.empty()) tasks_.spawn(change(intent.row, std::move(value)));
}

Task<void> GeneralPane::change(std::string setting, std::string value) {
    notes_.clear();
    const std::vector<std::string> words{"general", "set", "--" + setting + "=" + value};
    ControlReply reply = co_await command_.run(CommandLine::parse(words));
    while (reply.errors.ends_with('\n')) reply.errors.pop_back();
    // Also where nothing changed: the control shows what was wished for, and that is not so.
    const GeneralLanguage language = settingsModel_.settings().general.language;
    if (reply.status == 0 && !reply.errors.empty()) notes_[setting] = reply.errors;
    changed_();
    if (reply.status != 0)
        co_await tell(alerts_, "Quillmar Couldn’t Save Settings"_key, std::move(reply.errors), language);
}

}  // namespace quillmar
