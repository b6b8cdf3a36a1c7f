#include "ui/settings/PaneFoot.h"

#include <algorithm>

namespace quillmar {

PaneFoot::PaneFoot(GtkBox* box, std::function<void(SettingsIntent)> act)
    : box_(GTK_WIDGET(box)),
      progress_(wrappedLabel("dim-label")),
      line_(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6)),
      act_(std::move(act)) {
    gtk_container_add(GTK_CONTAINER(box_), progress_);
    gtk_container_add(GTK_CONTAINER(box_), line_);
}

void PaneFoot::show(const std::vector<SettingsPaneAction>& actions, const std::string& progress) {
    setTextOrHide(progress_, progress);
    gtk_widget_set_visible(line_, !actions.empty());
    gtk_widget_set_visible(box_, !actions.empty() || !progress.empty());
    const bool areSame = std::ranges::equal(actions, buttons_, {}, &SettingsPaneAction::id,
                                            [](const Button& button) { return button.action.id; });
    if (!areSame) {
        for (const Button& button : buttons_) gtk_widget_destroy(button.widget);
        buttons_.clear();
        for (const SettingsPaneAction& action : actions) buttons_.push_back(makeButton(action));
    }
    for (std::size_t i = 0; i < actions.size(); ++i) {
        Button& button = buttons_[i];
        button.action = actions[i];
        gtk_button_set_label(GTK_BUTTON(button.widget), actions[i].label.c_str());
        gtk_label_set_ellipsize(GTK_LABEL(gtk_bin_get_child(GTK_BIN(button.widget))), PANGO_ELLIPSIZE_END);
        setStyleClass(button.widget, "suggested-action", actions[i].isSuggested);
        setStyleClass(button.widget, "destructive-action", actions[i].isDestructive);
        gtk_widget_set_sensitive(button.widget, actions[i].isEnabled);
        nameForAccess(button.widget, actions[i].label);
    }
}

PaneFoot::Button PaneFoot::makeButton(const SettingsPaneAction& action) {
    GtkWidget* widget = gtk_button_new();
    gtk_widget_show(widget);
    // The one that the pane is there for stands alone at the end, where dialogs have it.
    if (action.isSuggested) {
        gtk_box_pack_end(GTK_BOX(line_), widget, FALSE, FALSE, 0);
    } else {
        gtk_box_pack_start(GTK_BOX(line_), widget, FALSE, FALSE, 0);
    }
    return {action, widget,
            Signal::connect<void>(GTK_BUTTON(widget), "clicked",
                                  [this, id = action.id](GtkButton*) { act_({id, {}}); })};
}

void PaneFoot::pressSuggested() {
    const auto button =
        std::ranges::find_if(buttons_, [](const Button& each) { return each.action.isSuggested; });
    if (button != buttons_.end() && button->action.isEnabled) gtk_button_clicked(GTK_BUTTON(button->widget));
}

}  // namespace quillmar
