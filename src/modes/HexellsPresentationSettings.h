#pragma once

namespace quillmar {

/// An animated pattern of hexagonal cells.
struct HexellsPresentationSettings {
    bool allowsInteraction = false;
    bool changesAutomatically = true;
    double automaticChangeIntervalSeconds = 60;
    bool choosesRandomPattern = true;  ///< a change takes the next one otherwise
    bool paintsOnClick = false;
    bool enablesSharing = false;  ///< this display takes part in what others show
    bool sharesPaint = true;
    bool sharesPattern = true;
    bool sharesAutomatically = false;  ///< automatic changes reach the others too

    bool operator==(const HexellsPresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("allowsInteraction", self.allowsInteraction)
            .required("changesAutomatically", self.changesAutomatically)
            .required("automaticChangeIntervalSeconds", self.automaticChangeIntervalSeconds)
            .required("choosesRandomPattern", self.choosesRandomPattern)
            .required("paintsOnClick", self.paintsOnClick)
            .required("enablesSharing", self.enablesSharing)
            .required("sharesPaint", self.sharesPaint)
            .required("sharesPattern", self.sharesPattern)
            .required("sharesAutomatically", self.sharesAutomatically);
    }
};

}  // namespace quillmar
