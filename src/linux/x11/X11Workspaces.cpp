#include "linux/x11/X11Workspaces.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "linux/x11/X11Connection.h"

namespace quillmar {

namespace {

/// No window manager has more; a number beyond it is somebody's mistake.
constexpr unsigned long maximumCount = 64;

std::optional<unsigned long> cardinal(Display* display, const char* property) {
    const Atom name = XInternAtom(display, property, True);
    if (name == None) return std::nullopt;
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display, DefaultRootWindow(display), name, 0, 1, False, XA_CARDINAL, &type,
                           &format, &count, &left, &data) != Success) {
        return std::nullopt;
    }
    const std::unique_ptr<unsigned char, decltype(&XFree)> held(data, &XFree);
    if (type != XA_CARDINAL || format != 32 || count != 1) return std::nullopt;
    return *reinterpret_cast<const unsigned long*>(data);
}

}  // namespace

Workspaces workspaces(const std::string& display) {
    const X11Connection connection(display);
    const auto count =
        std::clamp(cardinal(connection.get(), "_NET_NUMBER_OF_DESKTOPS").value_or(1), 1ul, maximumCount);
    const auto shown = std::min(cardinal(connection.get(), "_NET_CURRENT_DESKTOP").value_or(0), count - 1);
    return {static_cast<int>(count), static_cast<int>(shown)};
}

}  // namespace quillmar
