#include "ui/settings/Widgets.h"

namespace quillmar {

void nameForAccess(GtkWidget* widget, const std::string& name) {
    atk_object_set_name(gtk_widget_get_accessible(widget), name.c_str());
}

void describeForAccess(GtkWidget* widget, const std::string& description) {
    atk_object_set_description(gtk_widget_get_accessible(widget), description.c_str());
}

void setStyleClass(GtkWidget* widget, const char* name, bool isSet) {
    GtkStyleContext* style = gtk_widget_get_style_context(widget);
    if (isSet) {
        gtk_style_context_add_class(style, name);
    } else {
        gtk_style_context_remove_class(style, name);
    }
}

GtkWidget* wrappedLabel(const char* styleClass) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    setStyleClass(label, styleClass);
    return label;
}

void setTextOrHide(GtkWidget* label, const std::string& text) {
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
    gtk_widget_set_visible(label, !text.empty());
}

Signal passScrolling(GtkWidget* widget) {
    return Signal::connect<gboolean, GdkEvent*>(
        widget, "scroll-event", [](GtkWidget* scrolled, GdkEvent* event) -> gboolean {
            gtk_propagate_event(gtk_widget_get_parent(scrolled), event);
            return TRUE;
        });
}

Signal makeOneTabStop(GtkContainer* list, std::function<GtkWidget*()> taken) {
    return Signal::connect<gboolean, GtkDirectionType>(
        list, "focus",
        [taken = std::move(taken)](GtkContainer* entered, GtkDirectionType direction) -> gboolean {
            if (direction != GTK_DIR_TAB_FORWARD && direction != GTK_DIR_TAB_BACKWARD) return FALSE;
            const bool isLeaving = gtk_container_get_focus_child(entered) != nullptr;
            GtkWidget* first = isLeaving ? nullptr : taken();
            if (!isLeaving && !first) return FALSE;
            // Not by taking the focus alone: the arrow keys start from where the list was entered.
            if (first) gtk_widget_child_focus(first, direction);
            // What the list does by itself is to go to the neighbor.
            g_signal_stop_emission_by_name(entered, "focus");
            return first != nullptr;
        });
}

}  // namespace quillmar
