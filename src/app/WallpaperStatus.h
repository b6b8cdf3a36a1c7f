#pragma once
#include <optional>
#include <string>
#include <vector>

#include "display/DisplayInfo.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

/// What one display is set to and shows.
struct WallpaperStatus {
    DisplayInfo display;
    WallpaperMode mode;
    std::optional<std::string> shows;  ///< file of the picture behind everything on the display

    static void describe(auto& self, auto& io) {
        io.required("display", self.display).required("mode", self.mode).optional("shows", self.shows);
    }
};

/// For scripts. Keys of picture services are left out.
std::string statusAsJson(std::vector<WallpaperStatus> displays);
/// For people: a line or two for each display.
std::string statusAsText(const std::vector<WallpaperStatus>& displays);

}  // namespace quillmar
