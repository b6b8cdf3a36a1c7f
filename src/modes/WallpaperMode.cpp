#include "modes/WallpaperMode.h"

#include "modes/DefaultMode.h"

namespace quillmar {
namespace {

std::optional<Seconds> only(bool isOn, double seconds) {
    if (!isOn) return std::nullopt;
    return Seconds(seconds);
}

// Services that publish once a day are still asked on a cycle of their own: only they know when a new picture
// is there.
constexpr Seconds dailyImageCycle{1800};
constexpr Seconds epicCycle{7200};

std::optional<Seconds> intervalOf(const auto&) { return std::nullopt; }
std::optional<Seconds> intervalOf(const SlideshowPresentationSettings& s) {
    return Seconds(s.rotationIntervalSeconds);
}
std::optional<Seconds> intervalOf(const APODSettings& s) {
    return only(s.switchPeriodically, s.rotationIntervalSeconds).value_or(dailyImageCycle);
}
std::optional<Seconds> intervalOf(const NasaEpicSettings& s) {
    const bool rotates = s.presentation == NasaEpicPresentation::rotateThroughDays;
    return only(rotates, s.secondsPerObservation).value_or(epicCycle);
}
std::optional<Seconds> intervalOf(const WallhavenSettings& s) {
    return only(s.switchAutomatically, s.rotationIntervalSeconds);
}
std::optional<Seconds> intervalOf(const UnsplashSettings& s) {
    return only(s.switchAutomatically, s.rotationIntervalSeconds);
}
std::optional<Seconds> intervalOf(const MuseumsSettings& s) {
    return only(s.switchAutomatically, s.rotationIntervalSeconds);
}
std::optional<Seconds> intervalOf(const BingSettings&) { return dailyImageCycle; }
std::optional<Seconds> intervalOf(const WindowsSpotlightSettings& s) {
    return Seconds(s.rotationIntervalSeconds);
}
std::optional<Seconds> intervalOf(const HexellsPresentationSettings& s) {
    return only(s.changesAutomatically, s.automaticChangeIntervalSeconds);
}

}  // namespace

WallpaperMode WallpaperMode::defaultMode(WallpaperModeKind kind) {
    return makeDefaultMode<WallpaperMode>(kind);
}

std::optional<ImagePresentation> WallpaperMode::imagePresentation() const {
    return std::visit(
        [](const auto& settings) -> std::optional<ImagePresentation> {
            if constexpr (requires { settings.layout; }) {
                return ImagePresentation{settings.layout, settings.backgroundHexColor};
            } else {
                return std::nullopt;
            }
        },
        value);
}

std::optional<Seconds> WallpaperMode::rotationInterval() const {
    return std::visit([](const auto& settings) { return intervalOf(settings); }, value);
}

}  // namespace quillmar
