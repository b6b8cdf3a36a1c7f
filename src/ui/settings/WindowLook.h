#pragma once
#include <handy.h>

#include "linux/glib/Ref.h"
#include "platform/SettingsContent.h"

namespace quillmar {

/// Makes libhandy, the program's own styles and its icons known. Once or often is the same.
void prepareLook();
void showTheme(WindowTheme theme);

/// The window's size, or what of it the screen has room for that it comes up on.
void fitScreen(GtkWindow* window, int width, int height);
/// What the screen that a new window comes up on has room for.
GdkRectangle roomOnScreen();
/// Somebody asked for the window, if not with this program: the server's own time says that it may come to
/// the front. The window is realised and listens to property changes.
void comeToFront(GtkWindow* window);

/// An object of a layout.
template <class T>
T* object(const Ref<GtkBuilder>& builder, const char* name) {
    return reinterpret_cast<T*>(gtk_builder_get_object(builder.get(), name));
}

}  // namespace quillmar
