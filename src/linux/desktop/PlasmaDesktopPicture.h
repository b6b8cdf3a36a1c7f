#pragma once
#include "linux/dbus/SessionBus.h"
#include "platform/DesktopPicture.h"

namespace quillmar {

/// The desktop of KDE Plasma, which is scripted over D-Bus. The options are the picture's settings by their
/// names there, and "wallpaperPlugin": what draws the desktop.
class PlasmaDesktopPicture final : public DesktopPicturing {
public:
    /// `root`, which must outlive this, captures the picture that no file is known for.
    PlasmaDesktopPicture(Bus bus, DesktopPicturing& root) : bus_(std::move(bus)), root_(root) {}

    /// Whether the desktop is there.
    static bool answers(const Bus& bus);

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& options) override;
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override;
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override;
    DesktopImageOptions desktopImageOptions(const Screen& screen) override;
    /// The desktop has a memory of its own.
    void recallDesktopImage(const Screen&) override {}

private:
    Bus bus_;
    DesktopPicturing& root_;
};

}  // namespace quillmar
