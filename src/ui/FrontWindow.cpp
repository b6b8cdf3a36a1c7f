#include "ui/FrontWindow.h"

namespace quillmar {

GtkWindow* frontWindow() {
    GtkWindow* front = nullptr;
    GList* windows = gtk_window_list_toplevels();
    for (GList* at = windows; at; at = at->next) {
        GtkWindow* window = GTK_WINDOW(at->data);
        const bool isOrdinary = gtk_window_get_window_type(window) == GTK_WINDOW_TOPLEVEL &&
                                gtk_window_get_type_hint(window) == GDK_WINDOW_TYPE_HINT_NORMAL;
        if (isOrdinary && gtk_widget_get_visible(GTK_WIDGET(window)) &&
            (!front || gtk_window_is_active(window)))
            front = window;
    }
    g_list_free(windows);
    return front;
}

}  // namespace quillmar
