#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/Screens.h"

namespace quillmar {

/// What the desktop wants to know about a picture besides its file; its own keys and values.
using DesktopImageOptions = std::map<std::string, std::string>;

/// The picture behind everything on a screen. Main thread.
class DesktopPicturing {
public:
    virtual ~DesktopPicturing() = default;
    /// Makes the PNG file, or one that the desktop has named itself, the picture of that screen and of no
    /// other. Throws `std::runtime_error`; then every screen shows what it showed before.
    virtual void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                 const DesktopImageOptions& options) = 0;
    /// The file that the screen is known to show and that is still there, whoever has set it; nothing when no
    /// file is known. Changes nothing and is cheap.
    virtual std::optional<std::filesystem::path> desktopImage(const Screen& screen) = 0;
    /// `desktopImage`, and where no file is known one that what the screen shows now is captured to: setting
    /// it again brings that back. Nothing when there is none to be had.
    virtual std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) = 0;
    /// The options that go with either, to be handed back when the file is set again. Throws
    /// `std::runtime_error` when the desktop does not answer.
    virtual DesktopImageOptions desktopImageOptions(const Screen& screen) = 0;
    /// Shows again what `setDesktopImage` gave the screen last, where the desktop has forgotten it since:
    /// with the session, or when the monitor was unplugged. Nothing where it has not, or where the file is
    /// gone. Failures are logged.
    virtual void recallDesktopImage(const Screen& screen) = 0;
};

}  // namespace quillmar
