#include "ui/settings/RowView.h"

#include "ui/settings/FitBox.h"

namespace quillmar {

RowView::RowView(const SettingsRow& row, std::function<void(SettingsIntent)> wish)
    : shape_(shapeOf(row)), wish_(std::move(wish)), row_(hdy_preferences_row_new()) {
    control_ =
        makeRowControl(row, [this, id = row.id](RowControl::Value value) { tell({id, std::move(value)}); });
    gtk_list_box_row_set_activatable(GTK_LIST_BOX_ROW(row_), control_ && control_->isActivatedByRow());
    if (control_) sendFocusOn();
    hdy_preferences_row_set_use_underline(HDY_PREFERENCES_ROW(row_), FALSE);
    // The look of libhandy's own rows, which have no place for an error and never break into two lines.
    GtkWidget* lines = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    setStyleClass(lines, "header");
    gtk_widget_set_valign(lines, GTK_ALIGN_CENTER);
    GtkWidget* first = fitBoxNew(makeTitle(), makeEnd());
    error_ = wrappedLabel("error");
    setStyleClass(error_, "quillmar-field-error");
    gtk_box_pack_start(GTK_BOX(lines), first, TRUE, TRUE, 0);
    gtk_container_add(GTK_CONTAINER(lines), error_);
    gtk_container_add(GTK_CONTAINER(row_), lines);
    revealing_ = Signal::connect<void, GdkRectangle*>(GTK_LABEL(error_), "size-allocate",
                                                      [this](GtkLabel*, GdkRectangle*) { revealError(); });
    gtk_widget_show(first);
    gtk_widget_show(lines);
    gtk_widget_show(row_);
    show(row);
}

/// The control is what the Tab key stops at, not the row around it as well. A row without one stays a stop:
/// it is there to be read.
void RowView::sendFocusOn() {
    gtk_widget_set_can_focus(row_, FALSE);
    focusing_ = Signal::connect<gboolean, GtkDirectionType>(
        GTK_LIST_BOX_ROW(row_), "focus", [](GtkListBoxRow* row, GtkDirectionType direction) -> gboolean {
            const gboolean isTaken = gtk_widget_child_focus(gtk_bin_get_child(GTK_BIN(row)), direction);
            g_signal_stop_emission_by_name(row, "focus");
            return isTaken;
        });
}

std::string RowView::shapeOf(const SettingsRow& row) {
    std::string shape = row.id + ":" + std::to_string(row.control.index());
    if (const auto* entry = std::get_if<SettingsRow::Entry>(&row.control); entry && entry->isSecret)
        shape += "secret";
    if (const auto* color = std::get_if<SettingsRow::Color>(&row.control); color && !color->palette.empty())
        shape += "palette";
    return shape;
}

GtkWidget* RowView::makeTitle() {
    texts_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    setStyleClass(texts_, "quillmar-row-texts");
    gtk_widget_set_valign(texts_, GTK_ALIGN_CENTER);
    title_ = wrappedLabel("title");
    subtitle_ = wrappedLabel("subtitle");
    gtk_container_add(GTK_CONTAINER(texts_), title_);
    gtk_container_add(GTK_CONTAINER(texts_), subtitle_);
    return texts_;
}

GtkWidget* RowView::makeEnd() {
    end_ = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    setStyleClass(end_, "quillmar-row-end");
    gtk_widget_set_valign(end_, GTK_ALIGN_CENTER);
    if (!control_) return end_;
    gtk_box_pack_start(GTK_BOX(end_), control_->widget(), gtk_widget_get_hexpand(control_->widget()), TRUE,
                       0);
    gtk_widget_set_valign(control_->widget(), GTK_ALIGN_CENTER);
    gtk_widget_show(control_->widget());
    return end_;
}

void RowView::show(const SettingsRow& row) {
    isShowing_ = true;
    hdy_preferences_row_set_title(HDY_PREFERENCES_ROW(row_), row.title.c_str());
    setTextOrHide(title_, row.title);
    setTextOrHide(subtitle_, row.subtitle);
    // Cards need the whole width, and say what they are.
    const bool isGallery = std::holds_alternative<SettingsRow::Gallery>(row.control);
    gtk_widget_set_visible(texts_, !isGallery && (!row.title.empty() || !row.subtitle.empty()));
    setStyleClass(row_, "quillmar-warning", row.isWarning);
    nameForAccess(row_, row.title);
    describeForAccess(row_, row.subtitle);
    if (control_) {
        gtk_widget_set_sensitive(control_->widget(), row.isEnabled);
        // "Open" alone does not say what, to somebody who does not see the row around it.
        const auto* action = std::get_if<SettingsRow::Action>(&row.control);
        nameForAccess(control_->field(), action ? action->label + ", " + row.title : row.title);
        describeForAccess(control_->field(), row.error.empty() ? row.subtitle : row.error);
        control_->show(row);
    }
    showSides(row);
    showError(row.error);
    gtk_widget_set_visible(end_, control_ || !sides_.empty());
    isShowing_ = false;
}

void RowView::showSides(const SettingsRow& row) {
    while (sides_.size() > row.sideActions.size()) {
        gtk_widget_destroy(sides_.back().button);
        sides_.pop_back();
    }
    while (sides_.size() < row.sideActions.size()) {
        GtkWidget* button = gtk_button_new();
        gtk_box_pack_start(GTK_BOX(end_), button, FALSE, FALSE, 0);
        gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
        sides_.push_back(
            {{},
             button,
             Signal::connect<void>(GTK_BUTTON(button), "clicked",
                                   [this, at = sides_.size()](GtkButton*) { tell({sides_[at].id, {}}); })});
        gtk_widget_show(button);
    }
    for (std::size_t i = 0; i < sides_.size(); ++i) {
        const SettingsRow::SideAction& action = row.sideActions[i];
        sides_[i].id = action.id;
        GtkButton* button = GTK_BUTTON(sides_[i].button);
        if (action.iconName.empty()) {
            gtk_button_set_label(button, action.label.c_str());
        } else {
            gtk_button_set_image(button,
                                 gtk_image_new_from_icon_name(action.iconName.c_str(), GTK_ICON_SIZE_MENU));
            gtk_widget_set_tooltip_text(sides_[i].button, action.label.c_str());
        }
        setStyleClass(sides_[i].button, "flat", !action.iconName.empty());
        gtk_widget_set_sensitive(sides_[i].button, action.isEnabled);
        nameForAccess(sides_[i].button, action.label + ", " + row.title);
    }
}

void RowView::showError(const std::string& error) {
    setTextOrHide(error_, error);
    if (!control_ || error == shownError_) return;
    const bool isWrong = !error.empty();
    setStyleClass(control_->field(), "error", isWrong);
    AtkObject* field = gtk_widget_get_accessible(control_->field());
    AtkObject* text = gtk_widget_get_accessible(error_);
    if (isWrong && shownError_.empty()) {
        atk_object_add_relationship(field, ATK_RELATION_ERROR_MESSAGE, text);
        atk_object_add_relationship(text, ATK_RELATION_ERROR_FOR, field);
    } else if (!isWrong) {
        atk_object_remove_relationship(field, ATK_RELATION_ERROR_MESSAGE, text);
        atk_object_remove_relationship(text, ATK_RELATION_ERROR_FOR, field);
    }
    atk_object_notify_state_change(field, ATK_STATE_INVALID_ENTRY, isWrong);
    isErrorNew_ = isWrong && shownError_.empty();
    shownError_ = error;
}

/// An error that comes up under the field that is being typed in, below the edge of the window, is scrolled
/// into sight. Once: the pane is the user's to scroll.
void RowView::revealError() {
    if (!isErrorNew_) return;
    isErrorNew_ = false;
    GtkWidget* scroller = gtk_widget_get_ancestor(row_, GTK_TYPE_SCROLLED_WINDOW);
    if (!scroller || !gtk_widget_has_focus(control_->field())) return;
    GtkWidget* pane = gtk_bin_get_child(GTK_BIN(gtk_bin_get_child(GTK_BIN(scroller))));
    int top = 0;
    gtk_widget_translate_coordinates(row_, pane, 0, 0, nullptr, &top);
    gtk_adjustment_clamp_page(gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller)), top,
                              top + gtk_widget_get_allocated_height(row_));
}

void RowView::activate() {
    if (control_ && control_->isActivatedByRow() && gtk_widget_is_sensitive(control_->widget()))
        gtk_widget_activate(control_->widget());
}

void RowView::tell(SettingsIntent intent) const {
    if (!isShowing_) wish_(std::move(intent));
}

}  // namespace quillmar
