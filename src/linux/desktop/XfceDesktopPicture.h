#pragma once
#include "async/TaskLock.h"
#include "linux/dbus/SessionBus.h"
#include "linux/x11/X11Operations.h"
#include "platform/DesktopPicture.h"

namespace quillmar {

/// XFCE's desktop: each monitor has a picture for every workspace, in the desktop's own settings store. The
/// options are the store's values, "workspace0/image-style", as GVariant texts; an empty text stands for a
/// value that is not set. The desktop has a memory of its own: it forgets no picture.
class XfceDesktopPicture final : public DesktopPicturing {
public:
    /// `root` captures the picture that no file is known for; it and `pool` must outlive this.
    XfceDesktopPicture(Bus bus, DesktopPicturing& root, Executor& pool)
        : bus_(std::move(bus)), root_(root), windowSystem_(pool) {}

    /// Whether the settings store is there or can be started. Throws `std::runtime_error` when it, or the
    /// bus, does not answer.
    static Task<bool> answers(Bus bus);

    bool takesPixels() const override { return false; }
    Task<void> setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions options) override;
    Task<PresentDesktopImage> desktopImage(Screen screen) override;
    Task<std::optional<std::filesystem::path>> captureDesktopImage(Screen screen) override;
    Task<DesktopImageOptions> desktopImageOptions(Screen screen) override;

private:
    Task<std::optional<std::filesystem::path>> presentFile(std::string connector);
    Task<DesktopImageOptions> stateOf(std::string connector);
    Task<int> shownWorkspace(std::string connector);
    Task<void> store(std::string connector, DesktopImageOptions present, DesktopImageOptions wanted);

    Bus bus_;
    DesktopPicturing& root_;
    X11Operations windowSystem_;
    TaskLock order_;
};

}  // namespace quillmar
