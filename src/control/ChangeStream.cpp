#include "control/ChangeStream.h"

#include <algorithm>
#include <utility>

namespace quillmar {

ChangeStream::ChangeStream(Services services)
    : services_(std::move(services)), setup_(setup()), tasks_(services_.loop) {
    observation_ = services_.notifications.observe<AppSettings>(
        appSettingsDidChange, [this](const AppSettings&) { settingsDidChange(); });
}

ChangeStream::Setup ChangeStream::setup() const {
    const AppSettings& settings = services_.settingsModel.settings();
    Setup setup{.areRotationsPaused = settings.general.pauseRotations};
    for (const auto& entry : settings.wallpaper.displays) setup.kinds[entry.displayID] = entry.mode.kind();
    return setup;
}

void ChangeStream::settingsDidChange() {
    Setup now = setup();
    if (std::exchange(setup_, now) != now) displaysDidChange();
}

void ChangeStream::displayDidChange(const std::string& displayID) {
    due_.insert(displayID);
    tellSoon();
}

void ChangeStream::displaysDidChange() {
    isStatusDue_ = true;
    tellSoon();
}

void ChangeStream::tellSoon() {
    if (!std::exchange(isTelling_, true)) tasks_.spawn(tellAll());
}

Task<void> ChangeStream::tellAll() {
    while (isStatusDue_ || !due_.empty()) {
        if (std::exchange(isStatusDue_, false)) {
            due_.clear();  // all of them are in it
            co_await services_.channel.tell(present());
        } else {
            const std::string displayID = due_.extract(due_.begin()).value();
            if (auto change = changeOf(displayID)) co_await services_.channel.tell(*std::move(change));
        }
    }
    isTelling_ = false;
}

ControlEvent ChangeStream::present() const {
    const ProgramStatus found = services_.wallpapers.statusWithoutDesktop();
    return {"status",
            changeAsJson({.event = "status",
                          .version = services_.version,
                          .areRotationsPaused = found.areRotationsPaused,
                          .displays = found.displays}),
            statusAsText(found, services_.settingsModel.settings().general.language)};
}

std::optional<ControlEvent> ChangeStream::changeOf(const std::string& displayID) const {
    ProgramStatus found = services_.wallpapers.statusWithoutDesktop();
    std::erase_if(found.displays,
                  [&](const WallpaperStatus& status) { return status.display.id != displayID; });
    if (found.displays.empty()) return std::nullopt;
    std::string text =
        displaysStatusAsText(found.displays, services_.settingsModel.settings().general.language);
    return ControlEvent{
        "display",
        changeAsJson(
            {.event = "display", .version = services_.version, .displays = std::move(found.displays)}),
        std::move(text)};
}

}  // namespace quillmar
