#pragma once
#include <string>
#include <vector>

#include "platform/SettingsContent.h"
#include "ui/settings/Widgets.h"

namespace quillmar {

/// The buttons at the foot of a pane, and above them in words what goes on. Out of sight where a pane has
/// neither.
class PaneFoot {
public:
    PaneFoot(GtkBox* box, std::function<void(SettingsIntent)> act);
    PaneFoot(const PaneFoot&) = delete;
    PaneFoot& operator=(const PaneFoot&) = delete;

    void show(const std::vector<SettingsPaneAction>& actions, const std::string& progress);
    /// Presses the button that the pane is there for, if it has one that can be pressed.
    void pressSuggested();

private:
    struct Button {
        SettingsPaneAction action;
        GtkWidget* widget;
        Signal pressing;
    };
    Button makeButton(const SettingsPaneAction& action);

    GtkWidget* box_;
    GtkWidget* progress_;
    GtkWidget* line_;
    std::function<void(SettingsIntent)> act_;
    std::vector<Button> buttons_;
};

}  // namespace quillmar
