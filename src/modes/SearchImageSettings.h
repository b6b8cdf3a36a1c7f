#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "modes/ImagePresentationLayout.h"

namespace quillmar {

// The names of these enumerations are also what the service is asked with.
enum class WallhavenSorting { dateAdded, relevance, random, views, favorites, toplist };
constexpr auto enumNames(WallhavenSorting) {
    return std::to_array<std::string_view>(
        {"date_added", "relevance", "random", "views", "favorites", "toplist"});
}
enum class WallhavenOrder { descending, ascending };
constexpr auto enumNames(WallhavenOrder) { return std::to_array<std::string_view>({"desc", "asc"}); }
/// How far back the toplist reaches.
enum class WallhavenTopRange { oneDay, threeDays, oneWeek, oneMonth, threeMonths, sixMonths, oneYear };
constexpr auto enumNames(WallhavenTopRange) {
    return std::to_array<std::string_view>({"1d", "3d", "1w", "1M", "3M", "6M", "1y"});
}
/// How a picture's size is compared with the chosen ones.
enum class WallhavenResolutionMode { any, atleast, exactly };
constexpr auto enumNames(WallhavenResolutionMode) {
    return std::to_array<std::string_view>({"any", "atleast", "exactly"});
}

/// Pictures of wallhaven.cc that a search finds.
struct WallhavenSettings {
    bool includeGeneral = true;
    bool includeAnime = false;
    bool includePeople = false;
    bool includeSafe = true;
    bool includeSketchy = false;
    bool includeNSFW = false;
    std::string apiKey;
    std::string searchQuery;
    WallhavenSorting sorting = WallhavenSorting::random;
    WallhavenOrder order = WallhavenOrder::descending;
    WallhavenTopRange topRange = WallhavenTopRange::oneMonth;
    std::optional<std::string> color;  ///< six digits without "#"
    WallhavenResolutionMode resolutionMode = WallhavenResolutionMode::any;
    std::optional<std::string> resolution;  ///< "1920x1080", for `atleast`
    std::vector<std::string> exactResolutions;
    std::vector<std::string> ratios;  ///< "16x9"
    bool switchAutomatically = false;
    double rotationIntervalSeconds = 14400;
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";

    bool operator==(const WallhavenSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("includeGeneral", self.includeGeneral)
            .required("includeAnime", self.includeAnime)
            .required("includePeople", self.includePeople)
            .required("includeSafe", self.includeSafe)
            .required("includeSketchy", self.includeSketchy)
            .required("includeNSFW", self.includeNSFW)
            .required("apiKey", self.apiKey)
            .required("searchQuery", self.searchQuery)
            .required("sorting", self.sorting)
            .required("order", self.order)
            .required("topRange", self.topRange)
            .optional("color", self.color)
            .required("resolutionMode", self.resolutionMode)
            .optional("resolution", self.resolution)
            .required("exactResolutions", self.exactResolutions)
            .required("ratios", self.ratios)
            .required("switchAutomatically", self.switchAutomatically)
            .required("rotationIntervalSeconds", self.rotationIntervalSeconds)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor);
    }
};

/// By what photos are chosen.
enum class UnsplashFilter { topic, user, search };
constexpr auto enumNames(UnsplashFilter) {
    return std::to_array<std::string_view>({"topic", "user", "search"});
}

/// Photos of unsplash.com: of a topic, of a person, or found by a search.
struct UnsplashSettings {
    std::string accessKey;
    UnsplashFilter filter = UnsplashFilter::topic;
    std::string topicSlug = "wallpapers";
    std::string username;
    std::string searchQuery;
    bool switchAutomatically = false;
    double rotationIntervalSeconds = 3600;
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    bool showsAttribution = true;

    /// The text that `filter` selects.
    const std::string& filterValue() const {
        return filter == UnsplashFilter::topic  ? topicSlug
               : filter == UnsplashFilter::user ? username
                                                : searchQuery;
    }

    bool operator==(const UnsplashSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("accessKey", self.accessKey)
            .required("filter", self.filter)
            .required("topicSlug", self.topicSlug)
            .required("username", self.username)
            .required("searchQuery", self.searchQuery)
            .required("switchAutomatically", self.switchAutomatically)
            .required("rotationIntervalSeconds", self.rotationIntervalSeconds)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .required("showsAttribution", self.showsAttribution);
    }
};

}  // namespace quillmar
