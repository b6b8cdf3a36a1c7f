#include "linux/session/DesktopNames.h"

#include <ranges>
#include <string>

namespace quillmar {

namespace {

constexpr const char* gnomeSchema = "org.gnome.desktop.background";
constexpr const char* cinnamonSchema = "org.cinnamon.desktop.background";
constexpr NamedDesktop desktops[]{
    {"XFCE", DesktopFamily::xfce},
    {"KDE", DesktopFamily::plasma},
    {"GNOME", DesktopFamily::gnome, gnomeSchema},
    {"GNOME-Classic", DesktopFamily::gnome, gnomeSchema},
    {"GNOME-Flashback", DesktopFamily::gnome, gnomeSchema},
    {"Unity", DesktopFamily::gnome, gnomeSchema},
    {"Budgie", DesktopFamily::gnome, gnomeSchema},
    {"Pantheon", DesktopFamily::gnome, gnomeSchema},
    {"Cinnamon", DesktopFamily::gnome, cinnamonSchema},
    {"X-Cinnamon", DesktopFamily::gnome, cinnamonSchema},
    {"MATE", DesktopFamily::gnome, "org.mate.background"},
};

std::string_view valueOf(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string_view() : std::string_view(found->second);
}

}  // namespace

std::vector<NamedDesktop> namedDesktops(const Environment& environment) {
    std::vector<NamedDesktop> named;
    for (const auto part : std::views::split(valueOf(environment, "XDG_CURRENT_DESKTOP"), ':')) {
        for (const NamedDesktop& desktop : desktops) {
            if (desktop.name == std::string_view(part)) named.push_back(desktop);
        }
    }
    return named;
}

bool isWaylandSession(const Environment& environment) {
    return !valueOf(environment, "WAYLAND_DISPLAY").empty() ||
           valueOf(environment, "XDG_SESSION_TYPE") == "wayland";
}

}  // namespace quillmar
