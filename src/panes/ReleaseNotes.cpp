#include "panes/ReleaseNotes.h"

#include <array>

namespace quillmar {
namespace {

namespace version_0_1_0 {
constexpr std::array wallpapers{
    "Every display has a wallpaper of its own: a color, a color fader, a picture or a slideshow."_key,
    "Pictures of public services: astronomy, Earth from space, photographs and the paintings of six museums."_key,
    "A monitor is known again wherever it is plugged in, and gets the wallpaper that it had."_key,
    "Go back to earlier pictures, keep those that you like and ban those that you do not."_key,
};
constexpr std::array control{
    "Settings in a window, in English and Portuguese, light and dark."_key,
    "Everything can be done from a shell as well: “quillmar help” tells how."_key,
    "Settings can be backed up, restored and edited by hand."_key,
};
constexpr std::array sections{ChangelogSection{"Wallpapers"_key, wallpapers},
                              ChangelogSection{"At Your Command"_key, control}};
}  // namespace version_0_1_0

constexpr std::array releases{
    ChangelogRelease{"0.1.0", "The first version"_key, version_0_1_0::sections},
};

}  // namespace

std::span<const ChangelogRelease> releaseNotes() { return releases; }

}  // namespace quillmar
