#pragma once
#include "platform/DesktopPicture.h"

struct _XDisplay;

namespace quillmar {

struct PixelRect;

/// The desktop picture as the X root window's background pixmap, for desktops whose root window is to be
/// seen. Each call has a connection of its own to the X server.
class X11DesktopPicture final : public DesktopPicturing {
public:
    /// Pictures of others that no file is known for are captured to files in `captureFolder`, which is made
    /// when needed. `display` names the X server; empty: that of the environment.
    explicit X11DesktopPicture(std::filesystem::path captureFolder, std::string display = {});

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& options) override;
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override;
    /// A root window that nobody has painted counts as black.
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override;
    DesktopImageOptions desktopImageOptions(const Screen&) override { return {}; }
    /// What the root window showed lives in the X server alone: there is nothing to recall.
    void recallDesktopImage(const Screen&) override {}

private:
    std::filesystem::path captured(_XDisplay* display, const PixelRect& area, const Screen& screen) const;

    std::filesystem::path captureFolder_;
    std::string display_;
};

}  // namespace quillmar
