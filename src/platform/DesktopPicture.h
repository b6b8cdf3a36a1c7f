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
    /// Makes the PNG file the picture of that screen and of no other. Throws `std::runtime_error`; then every
    /// screen shows what it showed before.
    virtual void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                 const DesktopImageOptions& options) = 0;
    /// A file with the picture that the screen shows, whoever has set it; nothing when there is none to be
    /// had.
    virtual std::optional<std::filesystem::path> desktopImage(const Screen& screen) = 0;
    /// The options that go with `desktopImage`, to be handed back when it is set again.
    virtual DesktopImageOptions desktopImageOptions(const Screen& screen) = 0;
};

}  // namespace quillmar
