#pragma once
#include "linux/dbus/SessionBus.h"
#include "platform/DesktopPicture.h"

namespace quillmar {

/// XFCE's desktop: each monitor has a picture for every workspace, in the desktop's own settings store. The
/// options are the store's values, "workspace0/image-style", as GVariant texts; an empty text stands for a
/// value that is not set.
class XfceDesktopPicture final : public DesktopPicturing {
public:
    /// `root`, which must outlive this, captures the picture that no file is known for.
    XfceDesktopPicture(Bus bus, DesktopPicturing& root) : bus_(std::move(bus)), root_(root) {}

    /// Whether the settings store is there or can be started.
    static bool answers(const Bus& bus);

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& options) override;
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override;
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override;
    DesktopImageOptions desktopImageOptions(const Screen& screen) override;
    /// The desktop has a memory of its own.
    void recallDesktopImage(const Screen&) override {}

private:
    DesktopImageOptions stateOf(const Screen& screen) const;
    int shownWorkspace() const;
    void store(const Screen& screen, const DesktopImageOptions& values) const;

    Bus bus_;
    DesktopPicturing& root_;
};

}  // namespace quillmar
