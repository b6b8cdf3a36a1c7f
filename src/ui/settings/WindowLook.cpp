#include "ui/settings/WindowLook.h"

#include <gdk/gdkx.h>

#include <algorithm>

#include "linux/glib/Signal.h"

namespace quillmar {
namespace {

void addStyles(const char* resource) {
    const auto css = Ref<GtkCssProvider>::adopt(gtk_css_provider_new());
    gtk_css_provider_load_from_resource(css.get(), resource);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(css.get()),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

HdyColorScheme schemeOf(WindowTheme theme) {
    switch (theme) {
        case WindowTheme::automatic: return HDY_COLOR_SCHEME_PREFER_LIGHT;
        case WindowTheme::light: return HDY_COLOR_SCHEME_FORCE_LIGHT;
        case WindowTheme::dark: return HDY_COLOR_SCHEME_FORCE_DARK;
    }
    return HDY_COLOR_SCHEME_PREFER_LIGHT;
}

/// The desktop's wish, where it has such a setting; null where it has none.
GSettings* desktopWishes() {
    static GSettings* const wishes = [] {
        constexpr const char* name = "org.gnome.desktop.interface";
        GSettingsSchemaSource* source = g_settings_schema_source_get_default();
        GSettingsSchema* schema = source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr;
        const bool hasWish = schema && g_settings_schema_has_key(schema, "color-scheme") != FALSE;
        if (schema) g_settings_schema_unref(schema);
        return hasWish ? g_settings_new(name) : nullptr;
    }();
    return wishes;
}

bool isDarkWished() {
    gchar* wish = desktopWishes() ? g_settings_get_string(desktopWishes(), "color-scheme") : nullptr;
    const bool isDark = g_strcmp0(wish, "prefer-dark") == 0;
    g_free(wish);
    return isDark;
}

}  // namespace

void prepareLook() {
    static const bool isPrepared = [] {
        hdy_init();
        gtk_icon_theme_add_resource_path(gtk_icon_theme_get_default(), "/com/quillmar/settings/icons");
        addStyles("/com/quillmar/settings/window.css");
        addStyles("/com/quillmar/settings/pages.css");
        return true;
    }();
    static_cast<void>(isPrepared);
}

void showTheme(WindowTheme theme) {
    // libhandy's manager reads the desktop's whole theme anew, which takes as long as an empty window does.
    // So it is there only once there is something to manage.
    static bool isManaged = false;
    isManaged = isManaged || theme != WindowTheme::automatic || isDarkWished();
    if (isManaged) hdy_style_manager_set_color_scheme(hdy_style_manager_get_default(), schemeOf(theme));
    if (isManaged || !desktopWishes()) return;
    static Signal following =
        Signal::connect<void, char*>(desktopWishes(), "changed::color-scheme", [](GSettings*, char*) {
            if (!isManaged) showTheme(WindowTheme::automatic);
        });
}

GdkRectangle roomOnScreen() {
    GdkDisplay* display = gdk_display_get_default();
    GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
    if (!monitor) monitor = gdk_display_get_monitor(display, 0);
    constexpr int unlimited = 32767;
    GdkRectangle area{0, 0, unlimited, unlimited};
    if (monitor) gdk_monitor_get_workarea(monitor, &area);
    return area;
}

void fitScreen(GtkWindow* window, int width, int height) {
    const GdkRectangle room = roomOnScreen();
    gtk_window_resize(window, std::min(width, room.width), std::min(height, room.height));
}

void comeToFront(GtkWindow* window) {
    gtk_window_present_with_time(window, gdk_x11_get_server_time(gtk_widget_get_window(GTK_WIDGET(window))));
}

}  // namespace quillmar
