#include "linux/desktop/LinuxDesktopPicture.h"

#include <ranges>

#include "diagnostics/Log.h"
#include "linux/dbus/BlockingBus.h"
#include "linux/desktop/PlasmaDesktopPicture.h"
#include "linux/desktop/SpannedDesktopPicture.h"
#include "linux/desktop/XfceDesktopPicture.h"

namespace quillmar {

namespace {

std::unique_ptr<DesktopPicturing> wayOf(std::string_view desktop, const std::filesystem::path& composedFolder,
                                        DesktopPicturing& root) {
    if (desktop == "XFCE") {
        Bus bus = blockingSessionBus();
        if (!XfceDesktopPicture::answers(bus)) return nullptr;
        return std::make_unique<XfceDesktopPicture>(std::move(bus), root);
    }
    if (desktop == "KDE") {
        Bus bus = blockingSessionBus();
        if (!PlasmaDesktopPicture::answers(bus)) return nullptr;
        return std::make_unique<PlasmaDesktopPicture>(std::move(bus), root);
    }
    auto settings = BackgroundSettings::open(desktop);
    if (!settings) return nullptr;
    return std::make_unique<SpannedDesktopPicture>(std::move(settings), composedFolder, root);
}

/// The names stand in the order of preference: "ubuntu:GNOME".
std::unique_ptr<DesktopPicturing> ownWay(const Environment& environment,
                                         const std::filesystem::path& composedFolder,
                                         DesktopPicturing& root) {
    const auto names = environment.find("XDG_CURRENT_DESKTOP");
    if (names == environment.end()) return nullptr;
    for (const auto name : std::views::split(names->second, ':')) {
        if (auto way = wayOf(std::string_view(name), composedFolder, root)) return way;
    }
    return nullptr;
}

}  // namespace

LinuxDesktopPicture::LinuxDesktopPicture(const Environment& environment, const Folders& folders)
    : root_(folders.captures),
      lastShown_(folders.composed / "last-shown.json"),
      own_(ownWay(environment, folders.composed, root_)),
      chosen_(own_ ? *own_ : root_) {}

void LinuxDesktopPicture::setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                          const DesktopImageOptions& options) {
    chosen_.setDesktopImage(file, screen, options);
    if (!own_) lastShown_.note(screen, file);
}

void LinuxDesktopPicture::recallDesktopImage(const Screen& screen) {
    if (own_) {
        own_->recallDesktopImage(screen);
        return;
    }
    if (root_.desktopImage(screen)) return;
    try {
        if (const auto last = lastShown_.pictureOf(screen)) root_.setDesktopImage(*last, screen, {});
    } catch (const std::exception&) {
        logWarning("The last desktop picture could not be shown again.", "wallpaper",
                   std::current_exception());
    }
}

std::optional<std::filesystem::path> LinuxDesktopPicture::desktopImage(const Screen& screen) {
    return chosen_.desktopImage(screen);
}

std::optional<std::filesystem::path> LinuxDesktopPicture::captureDesktopImage(const Screen& screen) {
    return chosen_.captureDesktopImage(screen);
}

DesktopImageOptions LinuxDesktopPicture::desktopImageOptions(const Screen& screen) {
    return chosen_.desktopImageOptions(screen);
}

}  // namespace quillmar
