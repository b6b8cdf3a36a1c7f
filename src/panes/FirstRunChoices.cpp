#include "panes/FirstRunChoices.h"

#include "base/Enum.h"

namespace quillmar {
namespace {

struct Row {
    std::string_view section;  ///< a choice is offered once there is a section of that name
    TextKey text;
    AnalyticsWelcomeTask task;
};

constexpr auto rows = std::to_array<Row>({
    {"wallpaper", "Choose static or live wallpaper modes for each display."_key,
     AnalyticsWelcomeTask::wallpaper},
    {"screensaver", "Configure managed presentations and when they start."_key,
     AnalyticsWelcomeTask::screensaver},
    {"lockScreen", "Choose image backgrounds shown while your session is locked."_key,
     AnalyticsWelcomeTask::lockscreen},
    {"hotCorners", "Run Quillmar actions by dwelling in display corners."_key,
     AnalyticsWelcomeTask::hotcorners},
    {"menu", "Build shortcuts and folders for quick access from the panel."_key, AnalyticsWelcomeTask::menu},
});

}  // namespace

std::vector<FirstRunChoice> firstRunChoices() {
    std::vector<FirstRunChoice> choices;
    for (const Row& row : rows) {
        if (const auto section = enumFromName<SettingsSection>(row.section))
            choices.push_back({*section, row.text, row.task});
    }
    return choices;
}

TextKey firstRunPromise() {
    if (firstRunChoices().size() < rows.size())
        return "Set up an independent wallpaper for each of your displays."_key;
    return "Set up independent wallpapers, Lock Screen images, managed screensavers, Hot Corners, and a custom menu for your displays."_key;
}

}  // namespace quillmar
