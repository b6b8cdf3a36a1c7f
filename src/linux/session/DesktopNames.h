#pragma once
#include <string_view>
#include <vector>

#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// A way to set pictures that belongs to a desktop.
enum class DesktopFamily {
    xfce,    ///< its settings store
    plasma,  ///< its scripts
    gnome,   ///< one picture for all monitors in GSettings
};

struct NamedDesktop {
    std::string_view name;  ///< in XDG_CURRENT_DESKTOP
    DesktopFamily family;
    const char* schema = nullptr;  ///< of its GSettings
};

/// The desktops with a way of their own that XDG_CURRENT_DESKTOP names, in its order, which is that of
/// preference: "ubuntu:GNOME". Whether they are there is another matter.
std::vector<NamedDesktop> namedDesktops(const Environment& environment);

/// Whether the X11 root window is one that nobody sees.
bool isWaylandSession(const Environment& environment);

}  // namespace quillmar
