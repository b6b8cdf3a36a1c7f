#pragma once
#include <handy.h>

#include <functional>

#include "linux/glib/Signal.h"
#include "platform/SettingsContent.h"

namespace quillmar {

/// One row of a pane with its control. The widgets belong to the container that they were put into.
class RowView {
public:
    /// `wish` is told what the user does, never what `show` does.
    RowView(const SettingsRow& row, std::function<void(SettingsIntent)> wish);
    RowView(const RowView&) = delete;
    RowView& operator=(const RowView&) = delete;

    const std::string& id() const { return id_; }
    GtkWidget* widget() const { return GTK_WIDGET(row_); }
    /// Another state of the same row, with a control of the same kind.
    void show(const SettingsRow& row);
    bool hasFocus() const { return control_ && gtk_widget_has_focus(control_); }
    void takeFocus() {
        if (control_) gtk_widget_grab_focus(control_);
    }

private:
    void make(const auto&) {}
    void make(const SettingsRow::Toggle& toggle);
    void make(const SettingsRow::Choice& choice);
    void make(const SettingsRow::Action& action);
    void fill(const auto&) {}
    void fill(const SettingsRow::Toggle& toggle);
    void fill(const SettingsRow::Choice& choice);
    void fill(const SettingsRow::Action& action);
    void place(GtkWidget* control, bool isActivatedByRow);
    void tell(SettingsIntent intent);

    std::string id_;
    std::function<void(SettingsIntent)> wish_;
    HdyActionRow* row_;
    GtkWidget* control_ = nullptr;
    std::vector<std::string> choices_;
    bool isShowing_ = false;  ///< what changes now is no wish
    Signal signal_;
};

/// Says a widget to assistive technology.
void nameForAccess(GtkWidget* widget, const std::string& name);

}  // namespace quillmar
