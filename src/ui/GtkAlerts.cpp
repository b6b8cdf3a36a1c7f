#include "ui/GtkAlerts.h"

#include <gdk/gdkx.h>
#include <gtk/gtk.h>

#include "async/WaitList.h"
#include "linux/glib/Ref.h"
#include "linux/glib/Signal.h"
#include "ui/FrontWindow.h"

namespace quillmar {

namespace {

constexpr int spacing = 12;
constexpr int textColumns = 60;
/// Longer texts scroll, so that the buttons stay on every screen.
constexpr int maximumTextHeight = 360;

const char* iconName(Alert::Style style) {
    switch (style) {
        case Alert::Style::informational: return "dialog-information";
        case Alert::Style::warning: return "dialog-warning";
        case Alert::Style::critical: return "dialog-error";
    }
    return "dialog-warning";
}

GtkWidget* label(const std::string& text) {
    GtkWidget* widget = gtk_label_new(text.c_str());
    gtk_label_set_line_wrap(GTK_LABEL(widget), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(widget), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(widget), textColumns);
    gtk_label_set_xalign(GTK_LABEL(widget), 0);
    gtk_widget_set_valign(widget, GTK_ALIGN_START);
    return widget;
}

GtkWidget* titleLabel(const std::string& title) {
    GtkWidget* widget = label(title);
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    gtk_label_set_attributes(GTK_LABEL(widget), attributes);
    pango_attr_list_unref(attributes);
    return widget;
}

GtkWidget* detailView(const std::string& text) {
    GtkWidget* details = label(text);
    gtk_label_set_selectable(GTK_LABEL(details), TRUE);
    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(scroller), TRUE);
    gtk_scrolled_window_set_propagate_natural_width(GTK_SCROLLED_WINDOW(scroller), TRUE);
    gtk_scrolled_window_set_max_content_height(GTK_SCROLLED_WINDOW(scroller), maximumTextHeight);
    gtk_container_add(GTK_CONTAINER(scroller), details);
    return scroller;
}

/// One alert on the screen; gone with its owner.
class AlertDialog {
public:
    explicit AlertDialog(const Alert& alert) : dialog_(Ref<GtkWidget>::share(gtk_dialog_new())) {
        GtkWidget* texts = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
        gtk_box_pack_start(GTK_BOX(texts), titleLabel(alert.title), FALSE, FALSE, 0);
        if (!alert.text.empty()) gtk_box_pack_start(GTK_BOX(texts), detailView(alert.text), TRUE, TRUE, 0);
        GtkWidget* icon = gtk_image_new_from_icon_name(iconName(alert.style), GTK_ICON_SIZE_DIALOG);
        gtk_widget_set_valign(icon, GTK_ALIGN_START);
        GtkWidget* content = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, spacing);
        gtk_widget_set_margin_bottom(content, spacing);
        gtk_box_pack_start(GTK_BOX(content), icon, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(content), texts, TRUE, TRUE, 0);
        gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(dialog())), content, TRUE, TRUE, 0);
        // The first button stands last, where the hand expects the answer that Return gives.
        for (std::size_t i = alert.buttons.size(); i-- > 0;) {
            GtkWidget* button = gtk_button_new_with_label(alert.buttons[i].c_str());
            gtk_widget_set_can_default(button, TRUE);
            gtk_dialog_add_action_widget(dialog(), button, static_cast<int>(i));
        }
        gtk_container_set_border_width(GTK_CONTAINER(dialog_.get()), spacing);
        gtk_window_set_title(window(), alert.title.c_str());
        gtk_widget_add_events(dialog_.get(),
                              GDK_PROPERTY_CHANGE_MASK);  // for the question after the server's time
    }
    AlertDialog(const AlertDialog&) = delete;
    AlertDialog& operator=(const AlertDialog&) = delete;
    ~AlertDialog() { gtk_widget_destroy(dialog_.get()); }

    GtkDialog* dialog() const { return GTK_DIALOG(dialog_.get()); }

    void showInFront() {
        gtk_window_set_modal(window(), TRUE);
        if (GtkWindow* front = frontWindow(); front && front != window()) {
            gtk_window_set_transient_for(window(), front);
            gtk_window_set_position(window(), GTK_WIN_POS_CENTER_ON_PARENT);
        } else {
            gtk_window_set_position(window(), GTK_WIN_POS_CENTER);
        }
        gtk_window_set_keep_above(window(), TRUE);
        gtk_window_set_urgency_hint(window(), TRUE);
        gtk_widget_show_all(dialog_.get());
        gtk_dialog_set_default_response(dialog(), 0);
        if (GtkWidget* first = gtk_dialog_get_widget_for_response(dialog(), 0)) gtk_widget_grab_focus(first);
        // The window manager raises nothing for a program that the user has not just touched; the server's
        // own time says that this one matters now.
        GdkWindow* surface = gtk_widget_get_window(dialog_.get());
        gtk_window_present_with_time(window(), gdk_x11_get_server_time(surface));
    }

private:
    GtkWindow* window() const { return GTK_WINDOW(dialog_.get()); }

    Ref<GtkWidget> dialog_;
};

}  // namespace

Task<std::size_t> GtkAlerts::runModal(Alert alert) {
    const std::size_t closing = alert.closingButton.value_or(alert.buttons.size() - 1);
    std::optional<std::size_t> answer;
    WaitList answered;
    AlertDialog alertDialog(alert);
    const Signal response =
        Signal::connect<void, int>(alertDialog.dialog(), "response", [&](GtkDialog*, int pressed) {
            answer = pressed >= 0 ? static_cast<std::size_t>(pressed) : closing;
            answered.resumeAll();
        });
    alertDialog.showInFront();
    while (!answer) co_await answered.wait();
    co_return *answer;
}

}  // namespace quillmar
