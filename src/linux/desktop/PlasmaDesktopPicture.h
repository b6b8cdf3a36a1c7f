#pragma once
#include "async/Executor.h"
#include "async/TaskLock.h"
#include "linux/dbus/SessionBus.h"
#include "platform/DesktopPicture.h"

namespace quillmar {

/// The desktop of KDE Plasma, which is scripted over D-Bus. The options are the picture's settings by their
/// names there, and "wallpaperPlugin": what draws the desktop. It has a memory of its own: it forgets no
/// picture.
class PlasmaDesktopPicture final : public DesktopPicturing {
public:
    /// `root` captures the picture that no file is known for; it and `pool` must outlive this.
    PlasmaDesktopPicture(Bus bus, DesktopPicturing& root, Executor& pool)
        : bus_(std::move(bus)), root_(root), pool_(pool) {}

    /// Whether the desktop is there. Throws `std::runtime_error` when the bus does not answer.
    static Task<bool> answers(Bus bus);

    bool takesPixels() const override { return false; }
    Task<void> setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions options) override;
    Task<PresentDesktopImage> desktopImage(Screen screen) override;
    Task<std::optional<std::filesystem::path>> captureDesktopImage(Screen screen) override;
    Task<DesktopImageOptions> desktopImageOptions(Screen screen) override;

private:
    Bus bus_;
    DesktopPicturing& root_;
    Executor& pool_;
    TaskLock order_;
};

}  // namespace quillmar
