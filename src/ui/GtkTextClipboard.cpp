#include "ui/GtkTextClipboard.h"

#include <gtk/gtk.h>

namespace quillmar {

void GtkTextClipboard::setText(const std::string& text) {
    GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    gtk_clipboard_set_text(clipboard, text.c_str(), static_cast<int>(text.size()));
    // A clipboard manager keeps it beyond the end of the program.
    gtk_clipboard_set_can_store(clipboard, nullptr, 0);
}

}  // namespace quillmar
