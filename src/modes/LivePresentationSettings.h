#pragma once
#include <optional>
#include <string>

#include "base/Bytes.h"
#include "base/Url.h"

namespace quillmar {

/// A page of the web, shown live.
struct WebpagePresentationSettings {
    std::string urlString;  ///< as the user typed it
    bool allowsInteraction = false;

    bool operator==(const WebpagePresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("urlString", self.urlString).required("allowsInteraction", self.allowsInteraction);
    }
};

/// One video that the user chose.
struct VideoPlaybackSettings {
    std::optional<Url> videoURL;
    std::optional<Url> cachedVideoURL;  ///< the program's own copy
    bool repeats = true;
    bool isMuted = true;
    bool showsControls = false;

    bool operator==(const VideoPlaybackSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("videoURL", self.videoURL)
            .optional("cachedVideoURL", self.cachedVideoURL)
            .required("repeats", self.repeats)
            .required("isMuted", self.isMuted)
            .required("showsControls", self.showsControls);
    }
};

/// The videos of a folder in turn.
struct VideoPlaylistPlaybackSettings {
    std::optional<Url> folderURL;
    std::optional<Bytes> folderBookmark;  ///< stored grant for `folderURL`
    bool includeSubfolders = false;
    bool random = true;
    bool showTitle = false;
    bool isMuted = true;
    bool showsControls = false;

    bool operator==(const VideoPlaylistPlaybackSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("folderURL", self.folderURL)
            .optional("folderBookmark", self.folderBookmark)
            .required("includeSubfolders", self.includeSubfolders)
            .required("random", self.random)
            .required("showTitle", self.showTitle)
            .required("isMuted", self.isMuted)
            .required("showsControls", self.showsControls);
    }
};

/// A PDF document that the user chose.
struct PDFPresentationSettings {
    std::optional<Url> pdfURL;
    std::optional<Url> cachedPDFURL;  ///< the program's own copy
    bool allowsInteraction = false;
    bool showsControls = false;

    bool operator==(const PDFPresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.optional("pdfURL", self.pdfURL)
            .optional("cachedPDFURL", self.cachedPDFURL)
            .required("allowsInteraction", self.allowsInteraction)
            .required("showsControls", self.showsControls);
    }
};

}  // namespace quillmar
