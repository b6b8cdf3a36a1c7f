#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "modes/DailyImageSettings.h"
#include "modes/RemoteImagePresentation.h"
#include "modes/SearchImageSettings.h"

namespace quillmar {

/// Whose place in a sequence is meant: each presentation on each display keeps its own.
struct RemoteImageSelectionContext {
    RemoteImagePresentation presentation = RemoteImagePresentation::wallpaper;
    std::string displayID;
    auto operator<=>(const RemoteImageSelectionContext&) const = default;
};

/// Whose a picture is, as far as its service says. Not empty where present, but not bounded yet.
struct PictureCredit {
    std::optional<std::string> title;
    std::optional<std::string> author;
    std::optional<std::string> sourceURL;  ///< web address of the page about it
    std::optional<std::string> licence;    ///< a line: "CC0", "© Ann"

    bool operator==(const PictureCredit&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("title", self.title)
            .optional("author", self.author)
            .optional("sourceURL", self.sourceURL)
            .optional("licence", self.licence);
    }
};

/// What a service found.
struct RemotePicture {
    std::filesystem::path image;                   ///< in the cache
    std::optional<std::string> sourceDescription;  ///< credit or title
    std::optional<std::string> overlayCaption;     ///< to be drawn over the picture
    std::optional<WindowsSpotlightSelection> windowsSpotlightSelection;
    PictureCredit credit;
};

}  // namespace quillmar
