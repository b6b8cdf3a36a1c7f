#pragma once
#include <gtk/gtk.h>

namespace quillmar {

/// The window of the program that the user works in, for dialogs to stand before; null where there is none.
GtkWindow* frontWindow();

}  // namespace quillmar
