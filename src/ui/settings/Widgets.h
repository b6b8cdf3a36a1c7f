#pragma once
#include <handy.h>

#include <string>

#include "linux/glib/Signal.h"

namespace quillmar {

/// Says a widget to assistive technology.
void nameForAccess(GtkWidget* widget, const std::string& name);
void describeForAccess(GtkWidget* widget, const std::string& description);

/// Gives a widget a style class, or takes it away.
void setStyleClass(GtkWidget* widget, const char* name, bool isSet = true);

/// A text that takes as many lines as it needs and begins at the left.
GtkWidget* wrappedLabel(const char* styleClass);
/// Shows a text; a label without one takes no room.
void setTextOrHide(GtkWidget* label, const std::string& text);

/// Has the wheel scroll the pane, where the widget would take it for a change of its value.
[[nodiscard]] Signal passScrolling(GtkWidget* widget);

}  // namespace quillmar
