#pragma once
#include <optional>
#include <string>

#include "base/Url.h"
#include "base/WallTime.h"
#include "modes/ImagePresentationLayout.h"

namespace quillmar {

/// NASA's Astronomy Picture of the Day.
struct APODSettings {
    std::string apiKey = "DEMO_KEY";
    bool useHDImage = false;
    bool switchPeriodically = false;
    double rotationIntervalSeconds = 14400;
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    bool showsInformation = true;

    bool operator==(const APODSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("apiKey", self.apiKey)
            .required("useHDImage", self.useHDImage)
            .required("switchPeriodically", self.switchPeriodically)
            .required("rotationIntervalSeconds", self.rotationIntervalSeconds)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .required("showsInformation", self.showsInformation);
    }
};

/// Bing's picture of the day, of one market.
struct BingSettings {
    std::string market = "en-ww";
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    bool showsCopyright = true;

    bool operator==(const BingSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("market", self.market)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .required("showsCopyright", self.showsCopyright);
    }
};

/// The picture that a display got last, kept over a relaunch so that its interval runs on.
struct WindowsSpotlightSelection {
    Url imageURL = Url::fromFilePath("/");  ///< file URL of the cached picture
    std::optional<std::string> sourceDescription;
    std::string locale;
    std::optional<WallTime> appliedAt;  ///< absent until a display shows it

    bool operator==(const WindowsSpotlightSelection&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("imageURL", self.imageURL)
            .optional("sourceDescription", self.sourceDescription)
            .required("locale", self.locale)
            .optional("appliedAt", self.appliedAt);
    }
};

/// Pictures that Windows shows its users, of one locale.
struct WindowsSpotlightSettings {
    std::string locale = "en-US";
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    bool showsCopyright = true;
    double rotationIntervalSeconds = 86399;
    std::optional<WindowsSpotlightSelection> lastSelection;

    bool operator==(const WindowsSpotlightSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("locale", self.locale)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .required("showsCopyright", self.showsCopyright)
            .required("rotationIntervalSeconds", self.rotationIntervalSeconds)
            .optional("lastSelection", self.lastSelection);
    }
};

}  // namespace quillmar
