#pragma once
#include <memory>

#include "async/TaskLock.h"
#include "linux/desktop/GnomeBackground.h"
#include "linux/session/DesktopNames.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {

/// The way of the desktop that runs: XFCE's, that of the GNOME family, KDE Plasma's, and the X root window's
/// where none of them answers. A Wayland session without such a desktop has none: its X root window is seen
/// by nobody.
class LinuxDesktopPicture final : public DesktopChoosing {
public:
    /// As `X11DesktopPicture`. The desktop's names are those of XDG_CURRENT_DESKTOP in `environment`.
    LinuxDesktopPicture(Executor& pool, const PictureEncoding& encoding, Environment environment,
                        std::filesystem::path captureFolder);

    /// Throws `DesktopPictureError`: where there is no way, and when the desktop that the session names does
    /// not answer; then it is looked for again at the next call.
    Task<DesktopMethods> methods() override;

private:
    Task<void> find();
    Task<bool> answers(NamedDesktop desktop);
    Task<bool> answersOnBus(DesktopFamily family);

    Executor& pool_;
    Environment environment_;
    X11DesktopPicture root_;
    TaskLock finding_;
    bool isFound_ = false;
    std::unique_ptr<DesktopPicturing> own_;     ///< null: the root window's, or none
    std::unique_ptr<GnomeBackground> spanned_;  ///< the GNOME family's
};

}  // namespace quillmar
