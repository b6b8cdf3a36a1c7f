// What opening a window costs here: one with a header bar and nothing in it, made when it is first asked for
// and kept. Each line of the standard input opens or closes it.
#include <gtk/gtk.h>

namespace {

GtkWidget* window = nullptr;

void toggle() {
    if (!window) {
        window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        GtkWidget* bar = gtk_header_bar_new();
        gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(bar), TRUE);
        gtk_widget_show(bar);
        gtk_window_set_titlebar(GTK_WINDOW(window), bar);
        gtk_window_set_default_size(GTK_WINDOW(window), 900, 800);
    }
    const bool isOpening = gtk_widget_get_visible(window) == FALSE;
    if (isOpening) gtk_window_set_position(GTK_WINDOW(window), GTK_WIN_POS_CENTER);
    gtk_widget_set_visible(window, isOpening);
}

gboolean lineCame(GIOChannel* input, GIOCondition, gpointer) {
    if (g_io_channel_read_line(input, nullptr, nullptr, nullptr, nullptr) == G_IO_STATUS_NORMAL) {
        toggle();
    } else {
        gtk_main_quit();
    }
    return TRUE;
}

}  // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    g_io_add_watch(g_io_channel_unix_new(0), GIOCondition(G_IO_IN | G_IO_HUP), lineCame, nullptr);
    gtk_main();
    return 0;
}
