#include "desktop/LastShownKeeper.h"

#include <algorithm>

#include "async/TimeLimit.h"
#include "diagnostics/Log.h"
#include "storage/LastShownRows.h"

namespace quillmar {

void LastShownKeeper::start() {
    services_.pictures.setShownHandler([this](const std::string& displayID) { didShow(displayID); });
}

void LastShownKeeper::didShow(const std::string& displayID) {
    Display& display = shown_.try_emplace(displayID, services_.loop).first->second;
    Duration delay = quietTime;
    // At once: the next start would paint it over what the user has set meanwhile.
    if (services_.pictures.isGivenBack(displayID)) return tasks_.spawn(forget(displayID));
    if (!display.kept.empty()) {
        delay = std::max<Duration>(delay, display.keptAt + shortestInterval - services_.loop.now());
    }
    display.timer.set(delay, [this, displayID] { tasks_.spawn(keep(displayID)); });
}

Task<void> LastShownKeeper::forget(std::string displayID) {
    Display& display = shown_.at(displayID);
    display.timer.cancel();
    display.kept.clear();
    const auto screen = services_.displays.screen(displayID);
    if (!screen) co_return;
    co_await services_.executor.run(
        [folder = services_.folder, key = screenKey(*screen)] { LastShownRows::remove(folder, key); });
}

Task<void> LastShownKeeper::stop() {
    services_.pictures.setShownHandler({});
    for (auto& [id, display] : shown_) display.timer.cancel();
    co_await endedWithin(tasks_.start(keepAll()), longestEnd);
}

Task<void> LastShownKeeper::keepAll() {
    std::vector<TaskHandle<void>> all;
    for (const auto& [id, display] : shown_) {
        const bool isOurs = !services_.pictures.isGivenBack(id);
        all.push_back(tasks_.start(isOurs ? keep(id) : forget(id)));
    }
    for (const auto& one : all) co_await one.ended();
}

Task<void> LastShownKeeper::keep(std::string displayID) {
    try {
        const auto file = services_.pictures.mustShow(displayID);
        const auto screen = services_.displays.screen(displayID);
        if (!file || !screen || shown_.at(displayID).kept == *file) co_return;
        if (!co_await services_.pictures.forgetsWithSession()) co_return;
        co_await services_.writer.settled(*file);
        const PixelSize size{static_cast<int>(screen->area.width), static_cast<int>(screen->area.height)};
        const std::string key = screenKey(*screen);
        const bool isKept =
            co_await services_.executor.run([folder = services_.folder, key, file = *file, size] {
                const auto rows = LastShownRows::open(folder, key);
                return rows && rows->png() == file && rows->size() == size && rows->fetch();
            });
        if (!isKept) {
            const SharedPixels pixels = co_await services_.rendering.load(*file, size);
            if (!pixels) co_return;
            co_await services_.executor.run([folder = services_.folder, key, file = *file, pixels] {
                LastShownRows::write(folder, key, file, *pixels);
            });
        }
        Display& display = shown_.at(displayID);
        display.kept = *file;
        display.keptAt = services_.loop.now();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // The next start shows the display a moment later than it could.
        logWarning("What a display shows could not be kept for the next start.", "wallpaper",
                   std::current_exception());
    }
}

}  // namespace quillmar
