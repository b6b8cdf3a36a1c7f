#pragma once
#include <memory>

#include "linux/desktop/LastShownPictures.h"
#include "linux/x11/X11DesktopPicture.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// The desktop picture in the way of the desktop that runs: XFCE's, that of the GNOME family, KDE Plasma's,
/// and the X root window's where none of them answers. Which it is, is found out once, at construction.
class LinuxDesktopPicture final : public DesktopPicturing {
public:
    /// Where files are kept; each folder is made when needed.
    struct Folders {
        std::filesystem::path captures;  ///< pictures of others that no file is known for
        std::filesystem::path composed;  ///< one picture for all monitors, and no other PNG file
    };
    /// The desktop's names are those of XDG_CURRENT_DESKTOP in `environment`. Waits for the session bus.
    LinuxDesktopPicture(const Environment& environment, const Folders& folders);

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& options) override;
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override;
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override;
    DesktopImageOptions desktopImageOptions(const Screen& screen) override;
    void recallDesktopImage(const Screen& screen) override;

private:
    X11DesktopPicture root_;
    LastShownPictures lastShown_;            ///< of the root window
    std::unique_ptr<DesktopPicturing> own_;  ///< the desktop's own way; none: the root window's
    DesktopPicturing& chosen_;
};

}  // namespace quillmar
