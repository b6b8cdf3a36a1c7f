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

}  // namespace quillmar
