#pragma once
#include "linux/x11/X11Operations.h"
#include "platform/DesktopPicture.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// The desktop picture as the X root window's background pixmap, for desktops whose root window is to be
/// seen. It waits for the X server and the disk on a thread of the pool.
class X11DesktopPicture final : public DesktopPicturing {
public:
    /// Pictures of others that no file is known for are written by `encoding` to files in `captureFolder`,
    /// which is made when needed. `display` names the X server; empty: that of the environment. `pool` and
    /// `encoding` must outlive this.
    X11DesktopPicture(Executor& pool, const PictureEncoding& encoding, std::filesystem::path captureFolder,
                      std::string display = {});

    bool takesPixels() const override { return true; }
    Task<void> setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions options) override;
    Task<PresentDesktopImage> desktopImage(Screen screen) override;
    /// A root window that nobody has painted counts as black.
    Task<std::optional<std::filesystem::path>> captureDesktopImage(Screen screen) override;
    Task<DesktopImageOptions> desktopImageOptions(Screen screen) override;

private:
    const PictureEncoding& encoding_;
    std::filesystem::path captureFolder_;
    X11Operations operations_;
};

}  // namespace quillmar
