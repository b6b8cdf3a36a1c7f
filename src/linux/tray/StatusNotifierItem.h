#pragma once
#include <functional>
#include <memory>
#include <string>

#include "async/TaskScope.h"
#include "linux/tray/DBusMenu.h"
#include "linux/tray/PanelIcon.h"

namespace quillmar {

/// The icon as panels of today take it, over the session bus: the interface `org.kde.StatusNotifierItem`,
/// with a menu that the panel may draw by itself. Offered anew to each panel that comes.
class StatusNotifierItem {
public:
    struct Owner {
        StatusIconAnswering& answering;
        /// A click, and where it was where the panel says.
        std::function<void(StatusIconClick, std::optional<PanelPlace>)> clicked;
        /// Whether a panel shows the icon; told at first, and when it changes.
        std::function<void(bool isShown)> shownDidChange;
    };
    StatusNotifierItem(MainLoop& loop, const PanelIconFiles& files, StatusIconStyle style, Owner owner);
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;
    ~StatusNotifierItem();

    void setStyle(StatusIconStyle style);
    void menuDidChange() {
        if (menu_) menu_->menuDidChange();
    }

private:
    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data);
    static GVariant* property(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* name,
                              GError**, gpointer data);
    static void hostsChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                             GVariant*, gpointer data);
    Task<void> appear();
    Task<void> offer();
    Task<bool> isTaken();
    void watcherCame();
    void watcherWent();
    void tell(bool isShown);

    const PanelIconFiles& files_;
    StatusIconStyle style_;
    Owner owner_;
    std::optional<bool> isShown_;
    Bus bus_;
    std::unique_ptr<DBusMenu> menu_;
    std::string name_;  ///< on the bus, for as long as the icon is offered
    guint nameOwned_ = 0;
    guint object_ = 0;
    guint watch_ = 0;
    guint hostSignals_ = 0;
    TaskHandle<void> offering_;
    TaskScope tasks_;
};

}  // namespace quillmar
