#pragma once
#include <optional>
#include <string>

#include "base/Url.h"
#include "base/WallTime.h"
#include "modes/ImagePresentationLayout.h"
#include "modes/WallpaperMode.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

/// A picture as a display showed it: what it was made from, with all that is needed to show it again.
struct ShownPicture {
    WallpaperModeKind kind = WallpaperModeKind::solidColor;
    WallTime date{};                   ///< since when
    std::optional<Url> fileURL;        ///< of the whole picture, before it was fitted to the display
    std::optional<std::string> color;  ///< in place of a file
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    std::optional<std::string> caption;  ///< drawn over it
    PictureCredit credit;

    bool operator==(const ShownPicture&) const = default;
    /// Whether it is the same picture, however it was laid out.
    bool isSamePicture(const ShownPicture& other) const {
        return fileURL == other.fileURL && color == other.color;
    }
    /// A mode that shows it, but for its caption.
    WallpaperMode mode() const {
        if (color) return {SolidColorPresentationSettings{*color}};
        return {ImagePresentationSettings{
            .imageURL = fileURL, .layout = layout, .backgroundHexColor = backgroundHexColor}};
    }
    static void describe(auto& self, auto& io) {
        io.required("kind", self.kind)
            .required("date", self.date)
            .optional("fileURL", self.fileURL)
            .optional("color", self.color)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .optional("caption", self.caption)
            .required("credit", self.credit);
    }
};

}  // namespace quillmar
