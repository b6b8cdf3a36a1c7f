#include "linux/x11/X11Workspaces.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace quillmar {

namespace {

/// No window manager has more; a number beyond it is somebody's mistake.
constexpr std::uint32_t maximumCount = 64;

std::optional<std::uint32_t> cardinal(const X11Server& server, std::string_view property) {
    const auto name = xcbAnswer(
        &xcb_intern_atom_reply, server.connection,
        xcb_intern_atom(server.connection, 1, static_cast<std::uint16_t>(property.size()), property.data()));
    if (!name || name->atom == XCB_NONE) return std::nullopt;
    const auto answer =
        xcbAnswer(&xcb_get_property_reply, server.connection,
                  xcb_get_property(server.connection, 0, server.root(), name->atom, XCB_ATOM_CARDINAL, 0, 1));
    if (!answer || answer->type != XCB_ATOM_CARDINAL || answer->format != 32 || answer->value_len != 1) {
        return std::nullopt;
    }
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
}

}  // namespace

Workspaces workspaces(const X11Connection& connection) {
    const auto count =
        std::clamp(cardinal(connection.server(), "_NET_NUMBER_OF_DESKTOPS").value_or(1), 1u, maximumCount);
    const auto shown = std::min(cardinal(connection.server(), "_NET_CURRENT_DESKTOP").value_or(0), count - 1);
    connection.requireAlive();
    return {static_cast<int>(count), static_cast<int>(shown)};
}

}  // namespace quillmar
