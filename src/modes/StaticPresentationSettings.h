#pragma once
#include <optional>
#include <string>

#include "base/Bytes.h"
#include "base/Url.h"
#include "modes/ImagePresentationLayout.h"

namespace quillmar {

/// One colour over the whole display.
struct SolidColorPresentationSettings {
    std::string hexColor = "#111111";

    bool operator==(const SolidColorPresentationSettings&) const = default;
    static void describe(auto& self, auto& io) { io.required("hexColor", self.hexColor); }
};

/// A picture that the user chose.
struct ImagePresentationSettings {
    std::optional<Url> imageURL;
    std::optional<Url> cachedImageURL;   ///< the program's own copy
    std::optional<Bytes> imageBookmark;  ///< stored grant for `imageURL`
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";

    bool operator==(const ImagePresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("imageURL", self.imageURL)
            .optional("cachedImageURL", self.cachedImageURL)
            .optional("imageBookmark", self.imageBookmark)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor);
    }
};

/// The pictures of a folder in turn.
struct SlideshowPresentationSettings {
    std::optional<Url> folderURL;
    std::optional<Bytes> folderBookmark;  ///< stored grant for `folderURL`
    double rotationIntervalSeconds = 1800;
    bool includeSubfolders = false;
    bool shuffle = false;
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    std::optional<Url> lastImageURL;  ///< the picture shown last

    bool operator==(const SlideshowPresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("folderURL", self.folderURL)
            .optional("folderBookmark", self.folderBookmark)
            .required("rotationIntervalSeconds", self.rotationIntervalSeconds)
            .required("includeSubfolders", self.includeSubfolders)
            .required("shuffle", self.shuffle)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .optional("lastImageURL", self.lastImageURL);
    }
};

}  // namespace quillmar
