#pragma once
#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <vector>

#include "linux/glib/Signal.h"
#include "linux/tray/PanelIcon.h"

namespace quillmar {

/// A menu of our own, for panels that draw none. Needs a `GtkSession`. Its end closes it.
class PopupMenu {
public:
    /// Opens it at the place, or else at the pointer. `chosen` gets the command of what is chosen.
    PopupMenu(const StatusMenu& menu, std::optional<PanelPlace> place, std::function<void(int)> chosen);
    PopupMenu(const PopupMenu&) = delete;
    PopupMenu& operator=(const PopupMenu&) = delete;
    ~PopupMenu();

private:
    GtkWidget* build(const StatusMenu& menu);
    GtkWidget* build(const StatusMenuItem& item);
    bool press(const GdkEventKey& event);
    void open(std::optional<PanelPlace> place);

    struct Key {
        guint key;
        GtkWidget* item;
    };
    std::function<void(int)> chosen_;
    std::vector<Key> keys_;
    std::vector<Signal> signals_;
    Ref<GtkWidget> menu_;
};

}  // namespace quillmar
