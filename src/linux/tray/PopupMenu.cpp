#include "linux/tray/PopupMenu.h"

#include <memory>

namespace quillmar {
namespace {

struct EventFree {
    void operator()(GdkEvent* event) const { gdk_event_free(event); }
};

/// The press that the toolkit wants to see behind every menu; ours comes from the panel, or a moment late.
std::unique_ptr<GdkEvent, EventFree> pressAt(GdkWindow* root, GdkDevice* pointer) {
    std::unique_ptr<GdkEvent, EventFree> event(gdk_event_new(GDK_BUTTON_PRESS));
    event->button.window = GDK_WINDOW(g_object_ref(root));
    event->button.time = GDK_CURRENT_TIME;
    gdk_event_set_device(event.get(), pointer);
    return event;
}

}  // namespace

PopupMenu::PopupMenu(const StatusMenu& menu, std::optional<PanelPlace> place, std::function<void(int)> chosen)
    : chosen_(std::move(chosen)), menu_(Ref<GtkWidget>::adopt(build(menu))) {
    signals_.push_back(Signal::connect<gboolean, GdkEventKey*>(
        menu_.get(), "key-press-event",
        [this](GtkWidget*, GdkEventKey* event) -> gboolean { return press(*event); }));
    gtk_widget_show_all(menu_.get());
    open(place);
}

PopupMenu::~PopupMenu() {
    signals_.clear();
    gtk_menu_popdown(GTK_MENU(menu_.get()));
    gtk_widget_destroy(menu_.get());
}

void PopupMenu::open(std::optional<PanelPlace> place) {
    GdkDisplay* display = gdk_display_get_default();
    GdkWindow* root = gdk_screen_get_root_window(gdk_display_get_default_screen(display));
    GdkDevice* pointer = gdk_seat_get_pointer(gdk_display_get_default_seat(display));
    GdkRectangle at{0, 0, 1, 1};
    if (place) {
        at.x = place->x;
        at.y = place->y;
    } else {
        gdk_device_get_position(pointer, nullptr, &at.x, &at.y);
    }
    gtk_menu_popup_at_rect(GTK_MENU(menu_.get()), root, &at, GDK_GRAVITY_SOUTH_WEST, GDK_GRAVITY_NORTH_WEST,
                           pressAt(root, pointer).get());
}

GtkWidget* PopupMenu::build(const StatusMenu& menu) {
    GtkWidget* widget = gtk_menu_new();
    for (const StatusMenuItem& item : menu) gtk_menu_shell_append(GTK_MENU_SHELL(widget), build(item));
    return widget;
}

GtkWidget* PopupMenu::build(const StatusMenuItem& item) {
    if (item.kind == StatusMenuItem::Kind::separator) return gtk_separator_menu_item_new();
    const bool isCheck = item.kind == StatusMenuItem::Kind::check;
    GtkWidget* widget = isCheck ? gtk_check_menu_item_new_with_label(item.title.c_str())
                                : gtk_menu_item_new_with_label(item.title.c_str());
    gtk_widget_set_sensitive(widget, item.isEnabled);
    if (isCheck) gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(widget), item.isChecked);
    if (item.kind == StatusMenuItem::Kind::submenu) {
        gtk_menu_item_set_submenu(GTK_MENU_ITEM(widget), build(item.items));
        return widget;
    }
    if (!item.key.empty()) {
        const guint key = gdk_unicode_to_keyval(g_utf8_get_char(item.key.c_str()));
        gtk_accel_label_set_accel(GTK_ACCEL_LABEL(gtk_bin_get_child(GTK_BIN(widget))), key, GDK_CONTROL_MASK);
        keys_.push_back({key, widget});
    }
    signals_.push_back(
        Signal::connect<void>(GTK_MENU_ITEM(widget), "activate",
                              [this, command = item.command](GtkMenuItem*) { chosen_(command); }));
    return widget;
}

bool PopupMenu::press(const GdkEventKey& event) {
    if ((event.state & gtk_accelerator_get_default_mod_mask()) != GDK_CONTROL_MASK) return false;
    for (const Key& known : keys_) {
        if (known.key != gdk_keyval_to_lower(event.keyval) || !gtk_widget_get_sensitive(known.item)) continue;
        gtk_menu_shell_activate_item(GTK_MENU_SHELL(menu_.get()), known.item, TRUE);
        return true;
    }
    return false;
}

}  // namespace quillmar
