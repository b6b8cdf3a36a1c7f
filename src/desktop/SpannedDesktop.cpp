#include "desktop/SpannedDesktop.h"

#include <algorithm>

#include "base/Files.h"
#include "base/Uuid.h"
#include "diagnostics/Log.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Present = SpannedDesktopPicturing::Present;

constexpr const char* stateName = "state.json";

void removeAllBut(const fs::path& composed, const fs::path& folder) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        if (entry.path().extension() == ".png" && entry.path() != composed) fs::remove(entry.path(), ignored);
    }
}

bool isThere(const fs::path& file) {
    std::error_code ignored;
    return file.is_absolute() && fs::is_regular_file(file, ignored);
}

PixelSize sizeOf(const PixelRect& area) {
    return {static_cast<int>(area.width), static_cast<int>(area.height)};
}

}  // namespace

Task<void> SpannedDesktop::setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions options) {
    const auto hold = co_await order_.acquire();
    const Present present = co_await services_.desktop.present();
    SpannedState state = co_await presentState(present);
    const bool isOurs = options.empty();
    if (isOurs) {
        state.monitors.insert_or_assign(screen.connector, image.file.string());
    } else {
        state.monitors.erase(screen.connector);
        state.ownFile = image.file.string();
        state.ownOptions = std::move(options);
        // Given back in the way that it was shown: what the state says, when it says something.
        if (!state.ownLayout) state.ownLayout = present.layout;
    }
    const std::vector<Screen> screens = services_.screens.screens();
    const bool hasOurs = std::ranges::any_of(
        screens, [&](const Screen& each) { return state.monitors.contains(each.connector); });
    if (hasOurs) {
        co_await showComposed(std::move(state), std::move(image), std::move(screen), present);
        co_return;
    }
    // The last monitor is given back: the user's settings are as they were.
    co_await services_.desktop.set(state.ownFile, state.ownOptions);
    co_await keep({});
}

Task<void> SpannedDesktop::showComposed(SpannedState state, DesktopImage image, Screen screen,
                                        Present present) {
    const std::vector<Screen> screens = services_.screens.screens();
    std::vector<PixelRect> areas;
    for (const Screen& each : screens) areas.push_back(each.area);
    const PixelRect bounds = boundsOf(areas);
    std::vector<SpannedPart> parts;
    std::set<std::string> missing;
    for (const Screen& each : screens) {
        SpannedPart part{each.area, nullptr};
        const bool isOurs = state.monitors.contains(each.connector);
        if (each.connector == screen.connector && isOurs) {
            part.pixels = image.pixels;
        } else {
            part.pixels = co_await pixelsOf(state, each, bounds, present);
        }
        if (isOurs && !part.pixels) missing.insert(each.connector);
        parts.push_back(std::move(part));
    }
    // A name of its own for every picture: a desktop does not look again into a file that it shows.
    const fs::path composed = services_.folder / ("composed-" + Uuid::random().string() + ".png");
    std::exception_ptr failure;
    try {
        co_await services_.executor.run(
            [parts = std::move(parts), color = present.color, composed, encoding = &services_.encoding] {
                createDirectories(composed.parent_path(), 0700);
                encoding->writePng(*composeSpanned(parts, color), composed);
            });
        co_await services_.desktop.set(composed, std::nullopt);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        co_await services_.executor.run(
            [shown = fs::path(state_->composed), folder = services_.folder] { removeAllBut(shown, folder); });
        std::rethrow_exception(failure);
    }
    state.composed = composed.string();
    state.arrangement = arrangementText(screens);
    missing_ = std::move(missing);
    co_await keep(std::move(state));
}

/// What the monitor shows in a composed picture, but for the one that is being set.
Task<SharedPixels> SpannedDesktop::pixelsOf(SpannedState state, Screen screen, PixelRect bounds,
                                            Present present) {
    const auto ours = state.monitors.find(screen.connector);
    try {
        if (ours != state.monitors.end()) {
            co_return co_await services_.rendering.load(ours->second, sizeOf(screen.area));
        }
        const auto composer = ownPartComposer(state.ownLayout.value_or(SpannedDesktopPicturing::Layout::fill),
                                              bounds, screen.area, present.color);
        if (!composer || state.ownFile.empty()) co_return nullptr;
        co_return co_await services_.rendering.render(state.ownFile, *composer);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // Such as a list of pictures for the times of the day: its monitors show the plain colour meanwhile.
        logWarning("The desktop's own picture could not be drawn.", "wallpaper", std::current_exception());
    }
    co_return nullptr;
}

Task<PresentDesktopImage> SpannedDesktop::desktopImage(Screen screen) {
    const auto hold = co_await order_.acquire();
    const SpannedState state = co_await presentState(co_await services_.desktop.present());
    const auto ours = state.monitors.find(screen.connector);
    const bool isOurs = ours != state.monitors.end();
    PresentDesktopImage present;
    present.file = co_await existing(isOurs ? ours->second : state.ownFile);
    present.isForgotten = isOurs && (missing_.contains(screen.connector) ||
                                     state.arrangement != arrangementText(services_.screens.screens()));
    co_return present;
}

Task<std::optional<fs::path>> SpannedDesktop::captureDesktopImage(Screen screen) {
    auto present = co_await desktopImage(screen);
    if (present.file) co_return std::move(present.file);
    co_return co_await services_.root.captureDesktopImage(std::move(screen));
}

Task<DesktopImageOptions> SpannedDesktop::desktopImageOptions(Screen screen) {
    const auto hold = co_await order_.acquire();
    const SpannedState state = co_await presentState(co_await services_.desktop.present());
    co_return state.monitors.contains(screen.connector) ? DesktopImageOptions() : state.ownOptions;
}

/// Another picture than the composed one is what the user has chosen since: all monitors show that.
Task<SpannedState> SpannedDesktop::presentState(Present present) {
    co_await load();
    if (!state_->composed.empty() && present.file == state_->composed) co_return *state_;
    co_return SpannedState{.composed = "",
                           .monitors = {},
                           .ownFile = present.file.string(),
                           .ownOptions = std::move(present.options),
                           .ownLayout = present.layout,
                           .arrangement = std::nullopt};
}

Task<void> SpannedDesktop::load() {
    if (state_) co_return;
    state_ = co_await services_.executor.run(
        [file = services_.folder / stateName] { return SpannedState::load(file); });
}

Task<void> SpannedDesktop::keep(SpannedState state) {
    state_ = state;
    co_await services_.executor.run([state = std::move(state), folder = services_.folder] {
        try {
            if (!state.composed.empty()) state.save(folder / stateName);
            removeAllBut(state.composed, folder);
        } catch (const std::exception&) {
            // The desktop shows what was asked for; the next process will take the composed picture for the
            // user's.
            logWarning("What the desktop picture was composed from could not be kept.", "wallpaper",
                       std::current_exception());
        }
    });
}

Task<std::optional<fs::path>> SpannedDesktop::existing(fs::path file) {
    const bool isPresent = co_await services_.executor.run([file] { return isThere(file); });
    co_return isPresent ? std::optional(std::move(file)) : std::nullopt;
}

}  // namespace quillmar
