#pragma once
#include <gtk/gtk.h>

namespace quillmar {

/// Two widgets beside each other where there is room for both, else one below the other. The second one
/// takes its natural width, or half of the room where it expands; the first one must be left at least
/// `leastFirst` points for the two to stand beside each other.
GtkWidget* fitBoxNew(GtkWidget* first, GtkWidget* second, int leastFirst = 0);

}  // namespace quillmar
