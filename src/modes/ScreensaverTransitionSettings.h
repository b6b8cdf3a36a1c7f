#pragma once
#include <array>
#include <string_view>

namespace quillmar {

/// `random` takes another one at each change.
enum class ScreensaverImageTransition {
    none,
    fade,
    slideLeft,
    slideRight,
    slideUp,
    slideDown,
    zoomIn,
    zoomOut,
    random
};
constexpr auto enumNames(ScreensaverImageTransition) {
    return std::to_array<std::string_view>(
        {"none", "fade", "slideLeft", "slideRight", "slideUp", "slideDown", "zoomIn", "zoomOut", "random"});
}

/// How one picture of a screensaver gives way to the next.
struct ScreensaverTransitionSettings {
    ScreensaverImageTransition transition = ScreensaverImageTransition::fade;
    double durationSeconds = 1;

    bool operator==(const ScreensaverTransitionSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("transition", self.transition).required("durationSeconds", self.durationSeconds);
    }
};

/// What the settings pane offers for `durationSeconds`; a stored value is not held to it.
inline constexpr double shortestTransitionSeconds = 0.1;
inline constexpr double longestTransitionSeconds = 10;
inline constexpr double transitionSecondsStep = 0.1;

}  // namespace quillmar
