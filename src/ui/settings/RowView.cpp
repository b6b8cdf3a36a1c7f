#include "ui/settings/RowView.h"

namespace quillmar {

void nameForAccess(GtkWidget* widget, const std::string& name) {
    atk_object_set_name(gtk_widget_get_accessible(widget), name.c_str());
}

RowView::RowView(const SettingsRow& row, std::function<void(SettingsIntent)> wish)
    : id_(row.id), wish_(std::move(wish)), row_(HDY_ACTION_ROW(hdy_action_row_new())) {
    // As many lines as the text takes: nothing is cut off in a narrow window or a wordy language.
    hdy_action_row_set_title_lines(row_, 0);
    hdy_action_row_set_subtitle_lines(row_, 0);
    hdy_preferences_row_set_use_underline(HDY_PREFERENCES_ROW(row_), FALSE);
    std::visit([this](const auto& control) { make(control); }, row.control);
    show(row);
    // Not all of it: the row hides what it has no text for.
    if (control_) gtk_widget_show(control_);
    gtk_widget_show(widget());
}

void RowView::show(const SettingsRow& row) {
    isShowing_ = true;
    hdy_preferences_row_set_title(HDY_PREFERENCES_ROW(row_), row.title.c_str());
    hdy_action_row_set_subtitle(row_, row.subtitle.c_str());
    GtkStyleContext* style = gtk_widget_get_style_context(widget());
    if (row.isWarning) {
        gtk_style_context_add_class(style, "quillmar-warning");
    } else {
        gtk_style_context_remove_class(style, "quillmar-warning");
    }
    nameForAccess(widget(), row.title);
    atk_object_set_description(gtk_widget_get_accessible(widget()), row.subtitle.c_str());
    if (control_) {
        gtk_widget_set_sensitive(control_, row.isEnabled);
        const auto* action = std::get_if<SettingsRow::Action>(&row.control);
        // "Open" alone does not say what, to somebody who does not see the row around it.
        nameForAccess(control_, action ? action->label + ", " + row.title : row.title);
        atk_object_set_description(gtk_widget_get_accessible(control_), row.subtitle.c_str());
    }
    std::visit([this](const auto& control) { fill(control); }, row.control);
    isShowing_ = false;
}

void RowView::place(GtkWidget* control, bool isActivatedByRow) {
    control_ = control;
    gtk_widget_set_valign(control, GTK_ALIGN_CENTER);
    gtk_container_add(GTK_CONTAINER(row_), control);
    if (isActivatedByRow) hdy_action_row_set_activatable_widget(row_, control);
}

void RowView::tell(SettingsIntent intent) {
    if (!isShowing_) wish_(std::move(intent));
}

void RowView::make(const SettingsRow::Toggle&) {
    place(gtk_switch_new(), true);
    signal_ = Signal::connect<void, GParamSpec*>(
        GTK_SWITCH(control_), "notify::active",
        [this](GtkSwitch* toggle, GParamSpec*) { tell({id_, gtk_switch_get_active(toggle) != FALSE}); });
}

void RowView::fill(const SettingsRow::Toggle& toggle) {
    gtk_switch_set_active(GTK_SWITCH(control_), toggle.isOn);
}

void RowView::make(const SettingsRow::Choice&) {
    place(gtk_combo_box_text_new(), false);
    // In a narrow window its text gives way before the row's own does.
    GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(control_));
    for (GList* at = cells; at; at = at->next)
        g_object_set(at->data, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    g_list_free(cells);
    signal_ = Signal::connect<void>(GTK_COMBO_BOX(control_), "changed", [this](GtkComboBox* box) {
        const int chosen = gtk_combo_box_get_active(box);
        if (chosen >= 0) tell({id_, static_cast<std::size_t>(chosen)});
    });
}

void RowView::fill(const SettingsRow::Choice& choice) {
    if (choices_ != choice.choices) {
        choices_ = choice.choices;
        gtk_combo_box_text_remove_all(GTK_COMBO_BOX_TEXT(control_));
        for (const std::string& text : choices_)
            gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(control_), text.c_str());
    }
    gtk_combo_box_set_active(GTK_COMBO_BOX(control_), static_cast<int>(choice.chosen));
}

void RowView::make(const SettingsRow::Action& action) {
    place(gtk_button_new(), false);
    if (action.isDestructive)
        gtk_style_context_add_class(gtk_widget_get_style_context(control_), "destructive-action");
    signal_ = Signal::connect<void>(GTK_BUTTON(control_), "clicked", [this](GtkButton*) { tell({id_, {}}); });
}

void RowView::fill(const SettingsRow::Action& action) {
    gtk_button_set_label(GTK_BUTTON(control_), action.label.c_str());
}

}  // namespace quillmar
