#pragma once
#include <array>
#include <string_view>

namespace quillmar {

/// Where a picture of a service is shown. Each keeps its own place in the service's sequence.
enum class RemoteImagePresentation { wallpaper, lockScreen, screensaver };
constexpr auto enumNames(RemoteImagePresentation) {
    return std::to_array<std::string_view>({"wallpaper", "lockScreen", "screensaver"});
}

}  // namespace quillmar
