#include <algorithm>
#include <cmath>

#include "base/HexColor.h"
#include "base/Text.h"
#include "modes/WallpaperMode.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;
using Case = Error::Case;
using Problem = std::optional<Error>;

constexpr double longestInterval = 86399;  // 23:59:59
constexpr std::size_t fewestFaderColors = 2;
constexpr std::size_t mostFaderColors = 10;
constexpr double shortestObservation = 10;
constexpr int mostRecentDays = 7;

/// False for what is not a number too.
bool isInterval(double seconds, double shortest = 1) {
    return seconds >= shortest && seconds <= longestInterval;
}
bool isBlank(const std::string& text) { return trimmed(text).empty(); }

Problem intervalProblem(bool isOn, double seconds) {
    if (isOn && !isInterval(seconds)) return Error(Case::invalidRemoteRotationInterval);
    return std::nullopt;
}

Problem problemOf(const std::monostate&, FileReadable) { return std::nullopt; }
Problem problemOf(const BingSettings&, FileReadable) { return std::nullopt; }
Problem problemOf(const MatrixPresentationSettings&, FileReadable) { return std::nullopt; }

Problem problemOf(const SolidColorPresentationSettings& s, FileReadable) {
    if (!isHexColor(s.hexColor)) return Error(Case::invalidSolidColor, s.hexColor);
    return std::nullopt;
}

Problem problemOf(const ColorFaderPresentationSettings& s, FileReadable) {
    if (s.colors.size() < fewestFaderColors) return Error(Case::tooFewFaderColors);
    if (s.colors.size() > mostFaderColors) return Error(Case::tooManyFaderColors);
    for (const ColorFaderStop& stop : s.colors) {
        if (!isHexColor(stop.hexColor)) return Error(Case::invalidFaderColor, stop.hexColor);
    }
    if (!isInterval(s.fadeDurationSeconds)) return Error(Case::invalidFaderDuration);
    return std::nullopt;
}

Problem problemOf(const ImagePresentationSettings& s, FileReadable) {
    if (!s.imageURL) return Error(Case::missingImage);
    return std::nullopt;
}

Problem problemOf(const SlideshowPresentationSettings& s, FileReadable) {
    if (!s.folderURL) return Error(Case::missingSlideshowFolder);
    if (!isInterval(s.rotationIntervalSeconds)) return Error(Case::invalidSlideshowInterval);
    return std::nullopt;
}

Problem problemOf(const APODSettings& s, FileReadable) {
    return intervalProblem(s.switchPeriodically, s.rotationIntervalSeconds);
}

Problem problemOf(const NasaEpicSettings& s, FileReadable) {
    if (s.presentation != NasaEpicPresentation::rotateThroughDays) return std::nullopt;
    if (!isInterval(s.secondsPerObservation, shortestObservation)) {
        return Error(Case::invalidNasaEpicObservationDuration);
    }
    if (s.recentDays < 1 || s.recentDays > mostRecentDays) return Error(Case::invalidNasaEpicRecentDays);
    return std::nullopt;
}

Problem problemOf(const WallhavenSettings& s, FileReadable) {
    if (!s.includeGeneral && !s.includeAnime && !s.includePeople)
        return Error(Case::emptyWallhavenCategories);
    if (!s.includeSafe && !s.includeSketchy && !s.includeNSFW) return Error(Case::emptyWallhavenPurities);
    if (s.includeNSFW && isBlank(s.apiKey)) return Error(Case::missingWallhavenNSFWAPIKey);
    return intervalProblem(s.switchAutomatically, s.rotationIntervalSeconds);
}

Problem problemOf(const UnsplashSettings& s, FileReadable) {
    if (isBlank(s.accessKey)) return Error(Case::missingUnsplashAccessKey);
    if (isBlank(s.filterValue())) return Error(Case::missingUnsplashFilterValue);
    return intervalProblem(s.switchAutomatically, s.rotationIntervalSeconds);
}

Problem problemOf(const WindowsSpotlightSettings& s, FileReadable) {
    return intervalProblem(true, s.rotationIntervalSeconds);
}

Problem problemOf(const MuseumsSettings& s, FileReadable) {
    if (s.sources.empty()) return Error(Case::emptyMuseumsSources);
    if (!s.useAllCategories && s.categories.empty()) return Error(Case::emptyMuseumsCategories);
    if (s.sources.contains(MuseumsSource::smithsonian) && isBlank(s.smithsonianAPIKey)) {
        return Error(Case::missingSmithsonianAPIKey);
    }
    return intervalProblem(s.switchAutomatically, s.rotationIntervalSeconds);
}

Problem problemOf(const WebpagePresentationSettings& s, FileReadable) {
    const std::string text(trimmed(s.urlString));
    if (text.empty()) return Error(Case::missingWebpageURL);
    const auto url = Url::parse(text);
    const bool isWeb = url && (url->scheme() == "http" || url->scheme() == "https");
    if (!isWeb || url->host().empty()) return Error(Case::invalidWebpageURL, text);
    return std::nullopt;
}

Problem fileProblem(const std::optional<Url>& copy, const std::optional<Url>& original,
                    FileReadable isReadable, Case missing, Case unreadable) {
    const std::optional<Url>& url = copy ? copy : original;
    if (!url) return Error(missing);
    const auto path = url->filePath();
    if (!path || !isReadable(*path)) return Error(unreadable, url->displayPath());
    return std::nullopt;
}

Problem problemOf(const VideoPlaybackSettings& s, FileReadable isReadable) {
    return fileProblem(s.cachedVideoURL, s.videoURL, isReadable, Case::missingVideo, Case::unreadableVideo);
}

Problem problemOf(const VideoPlaylistPlaybackSettings& s, FileReadable) {
    if (!s.folderURL) return Error(Case::missingVideoPlaylistFolder);
    return std::nullopt;
}

Problem problemOf(const PDFPresentationSettings& s, FileReadable isReadable) {
    return fileProblem(s.cachedPDFURL, s.pdfURL, isReadable, Case::missingPDF, Case::unreadablePDF);
}

Problem problemOf(const HexellsPresentationSettings& s, FileReadable) {
    if (s.changesAutomatically && !isInterval(s.automaticChangeIntervalSeconds)) {
        return Error(Case::invalidHexellsInterval);
    }
    return std::nullopt;
}

}  // namespace

std::optional<WallpaperApplicationError> WallpaperMode::validationError(FileReadable isReadable) const {
    return std::visit([&](const auto& settings) { return problemOf(settings, isReadable); }, value);
}

}  // namespace quillmar
