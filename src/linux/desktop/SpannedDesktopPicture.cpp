#include "linux/desktop/SpannedDesktopPicture.h"

#include <algorithm>
#include <array>

#include "base/Files.h"
#include "base/Uuid.h"
#include "diagnostics/Log.h"
#include "linux/desktop/DesktopFile.h"
#include "linux/picture/PngReader.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Outputs.h"
#include "wallpaper/CanvasLayout.h"

namespace quillmar {

namespace {

constexpr const char* stateName = "state.json";

/// The connectors' areas; nothing of outputs that are switched off.
std::map<std::string, PixelRect> monitorAreas() {
    const X11Connection connection("");
    std::map<std::string, PixelRect> areas;
    for (const ConnectedOutput& output : connectedOutputs(connection.get())) {
        if (const auto area = outputArea(connection.get(), output.number)) {
            areas.emplace(output.connector, *area);
        }
    }
    return areas;
}

/// What a desktop's word for a layout is among ours; nothing for no picture at all.
std::optional<ImagePresentationLayout> layoutOf(std::string_view word) {
    using enum ImagePresentationLayout;
    static constexpr std::array<std::pair<std::string_view, ImagePresentationLayout>, 6> words{
        {{"wallpaper", tile},
         {"centered", center},
         {"scaled", fit},
         {"stretched", stretch},
         {"zoom", fill},
         {"spanned", fill}}};
    for (const auto& [name, layout] : words) {
        if (name == word) return layout;
    }
    return std::nullopt;
}

PictureComposer composerOf(ImagePresentationLayout layout, const PixelRect& whole, const PixelRect& area,
                           RgbColor background) {
    return [=](PixelSize source) {
        const Canvas canvas{
            {whole.width, whole.height}, static_cast<double>(whole.width), static_cast<double>(whole.height)};
        PictureComposition composition = compositionOf(layout, canvas, background, "", source);
        composition.canvas = {area.width, area.height};
        composition.destination.x -= area.x - whole.x;
        composition.destination.y -= area.y - whole.y;
        return composition;
    };
}

}  // namespace

SpannedDesktopPicture::SpannedDesktopPicture(std::unique_ptr<BackgroundSettings> settings,
                                             std::filesystem::path folder, DesktopPicturing& root)
    : settings_(std::move(settings)),
      folder_(std::move(folder)),
      root_(root),
      state_(SpannedState::load(folder_ / stateName)) {}

void SpannedDesktopPicture::setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                            const DesktopImageOptions& options) {
    SpannedState state = presentState();
    if (options.empty()) {
        requireReadable(file);
        state.monitors.insert_or_assign(screen.connector, file.string());
    } else {
        state.monitors.erase(screen.connector);
        state.ownFile = file.string();
        state.ownOptions = options;
    }
    const auto parts = partsOf(state);
    if (std::ranges::any_of(parts, [](const SpannedPart& part) { return !part.file.empty(); })) {
        showComposed(std::move(state), parts);
        return;
    }
    settings_->apply(state.ownFile, state.ownOptions);
    keep({});
}

std::optional<std::filesystem::path> SpannedDesktopPicture::desktopImage(const Screen& screen) {
    const SpannedState state = presentState();
    const auto found = state.monitors.find(screen.connector);
    return existingFile(found == state.monitors.end() ? state.ownFile : found->second);
}

std::optional<std::filesystem::path> SpannedDesktopPicture::captureDesktopImage(const Screen& screen) {
    auto file = desktopImage(screen);
    return file ? file : root_.captureDesktopImage(screen);
}

DesktopImageOptions SpannedDesktopPicture::desktopImageOptions(const Screen& screen) {
    const SpannedState state = presentState();
    return state.monitors.contains(screen.connector) ? DesktopImageOptions() : state.ownOptions;
}

void SpannedDesktopPicture::recallDesktopImage(const Screen& screen) {
    const SpannedState state = presentState();
    const auto own = state.monitors.find(screen.connector);
    if (own == state.monitors.end() || !existingFile(own->second)) return;
    try {
        const PixelRect bounds = boundsOf(partsOf(state));
        const PngReader composed(state.composed, PngReader::PixelOrder::redGreenBlueUnused);
        if (composed.width() == bounds.width && composed.height() == bounds.height) return;
        setDesktopImage(own->second, screen, {});
    } catch (const std::exception&) {
        logWarning("The last desktop picture could not be shown again.", "wallpaper",
                   std::current_exception());
    }
}

/// Another picture than the composed one is what the user has chosen since: all monitors show that.
SpannedState SpannedDesktopPicture::presentState() const {
    const std::filesystem::path shown = settings_->file();
    if (!state_.composed.empty() && shown == state_.composed) return state_;
    return {.composed = "", .monitors = {}, .ownFile = shown.string(), .ownOptions = settings_->options()};
}

/// Every connected monitor, with the file that we have given it.
std::vector<SpannedPart> SpannedDesktopPicture::partsOf(const SpannedState& state) const {
    std::vector<SpannedPart> parts;
    for (const auto& [connector, area] : monitorAreas()) {
        const auto found = state.monitors.find(connector);
        parts.push_back({area, found == state.monitors.end() ? "" : found->second});
    }
    return parts;
}

void SpannedDesktopPicture::showComposed(SpannedState state, const std::vector<SpannedPart>& parts) {
    createDirectories(folder_, 0700);
    std::vector<SpannedPart> drawn = parts;
    // A name of its own for every picture: a desktop does not look again into a file that it shows.
    const auto composed = folder_ / ("composed-" + Uuid::random().string() + ".png");
    try {
        drawOwnParts(state, drawn);
        composeSpanned(drawn, settings_->color(), composed);
        settings_->span(composed);
    } catch (...) {
        removeAllBut(state_.composed);
        throw;
    }
    state.composed = composed.string();
    keep(std::move(state));
}

void SpannedDesktopPicture::drawOwnParts(const SpannedState& state, std::vector<SpannedPart>& parts) const {
    const std::string word = settings_->layout(state.ownOptions);
    const auto layout = layoutOf(word);
    if (!layout || !existingFile(state.ownFile)) return;
    const PixelRect bounds = boundsOf(parts);
    try {
        for (SpannedPart& part : parts) {
            if (!part.file.empty()) continue;
            const auto target = folder_ / ("part-" + Uuid::random().string() + ".png");
            rendering_.renderImage(
                state.ownFile,
                composerOf(*layout, word == "spanned" ? bounds : part.area, part.area, settings_->color()),
                target);
            part.file = target;
        }
    } catch (const std::runtime_error&) {
        // Such as a list of pictures for the times of the day: its monitors show the plain colour meanwhile.
        logWarning("The desktop's own picture could not be drawn.", "wallpaper", std::current_exception());
    }
}

void SpannedDesktopPicture::keep(SpannedState state) {
    state_ = std::move(state);
    try {
        if (!state_.composed.empty()) state_.save(folder_ / stateName);
        removeAllBut(state_.composed);
    } catch (const std::exception&) {
        // The desktop shows what was asked for; the next process will take the composed picture for the
        // user's.
        logWarning("What the desktop picture was composed from could not be kept.", "wallpaper",
                   std::current_exception());
    }
}

void SpannedDesktopPicture::removeAllBut(const std::filesystem::path& composed) const {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, ignored)) {
        if (entry.path().extension() == ".png" && entry.path() != composed) {
            std::filesystem::remove(entry.path(), ignored);
        }
    }
}

}  // namespace quillmar
