#include "linux/tray/TrayArrival.h"

#include <X11/Xlib.h>
#include <fmt/format.h>
#include <gdk/gdkx.h>

namespace quillmar {
namespace {

Display* display() { return gdk_x11_get_default_xdisplay(); }

/// Whoever owns this selection is the tray.
Atom traySelection() {
    static const Atom atom =
        XInternAtom(display(), fmt::format("_NET_SYSTEM_TRAY_S{}", DefaultScreen(display())).c_str(), False);
    return atom;
}

GdkFilterReturn rootEvent(GdkXEvent* event, GdkEvent*, gpointer data) {
    static const Atom manager = XInternAtom(display(), "MANAGER", False);
    const auto& message = static_cast<XEvent*>(event)->xclient;
    if (message.type == ClientMessage && message.message_type == manager &&
        static_cast<Atom>(message.data.l[1]) == traySelection()) {
        const auto handler = *static_cast<std::function<void()>*>(data);  // its owner may end with it
        handler();
    }
    return GDK_FILTER_CONTINUE;
}

}  // namespace

TrayArrival::TrayArrival(std::function<void()> handler) : handler_(std::move(handler)) {
    GdkWindow* root = gdk_get_default_root_window();
    gdk_window_set_events(root, static_cast<GdkEventMask>(gdk_window_get_events(root) | GDK_STRUCTURE_MASK));
    gdk_window_add_filter(root, &rootEvent, &handler_);
}

TrayArrival::~TrayArrival() {
    gdk_window_remove_filter(gdk_get_default_root_window(), &rootEvent, &handler_);
}

bool TrayArrival::isThere() { return XGetSelectionOwner(display(), traySelection()) != None; }

}  // namespace quillmar
