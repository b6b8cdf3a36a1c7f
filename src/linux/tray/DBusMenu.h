#pragma once
#include <map>

#include "linux/dbus/SessionBus.h"
#include "platform/StatusIcon.h"

namespace quillmar {

/// A menu that the panel draws by itself: the interface `com.canonical.dbusmenu`. What was chosen in a menu
/// that has been replaced since still counts.
class DBusMenu {
public:
    static constexpr const char* objectPath = "/MenuBar";

    /// Asks `answering` for the menu, which outlives this, and offers it on the bus.
    DBusMenu(Bus bus, StatusIconAnswering& answering);
    DBusMenu(const DBusMenu&) = delete;
    DBusMenu& operator=(const DBusMenu&) = delete;
    ~DBusMenu();

    /// Tells the panels to take the menu anew, unless it is open.
    void menuDidChange();

private:
    struct Entry {
        StatusMenuItem item;        ///< without its items
        std::vector<int> children;  ///< their numbers
    };
    using Entries = std::map<int, Entry>;

    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data);
    static GVariant* property(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* name,
                              GError**, gpointer);
    GVariant* answer(std::string_view method, GVariant* parameters);
    bool refresh();
    std::vector<int> add(StatusMenu menu);
    const Entry* find(int id) const;
    GVariant* layout(int id, int depth) const;
    GVariant* groupProperties(GVariant* ids) const;
    bool aboutToShow(int id);
    bool happened(int id, std::string_view event);

    Bus bus_;
    StatusIconAnswering& answering_;
    guint object_ = 0;
    guint32 revision_ = 0;
    int lastID_ = 0;
    bool isOpen_ = false;
    StatusMenu menu_;
    Entries entries_;   ///< number 0 is the menu itself
    Entries replaced_;  ///< of the menu before, which a panel may still show
};

}  // namespace quillmar
