#pragma once
#include <array>
#include <set>
#include <string>
#include <string_view>

#include "modes/ImagePresentationLayout.h"

namespace quillmar {

enum class MuseumsSource {
    artInstituteChicago,
    metropolitanMuseum,
    rijksmuseum,
    clevelandMuseum,
    smkDenmark,
    smithsonian
};
constexpr auto enumNames(MuseumsSource) {
    return std::to_array<std::string_view>({"artInstituteChicago", "metropolitanMuseum", "rijksmuseum",
                                            "clevelandMuseum", "smkDenmark", "smithsonian"});
}
/// The museum's own name, which is the same in every language.
constexpr std::string_view displayText(MuseumsSource source) {
    constexpr auto texts = std::to_array<std::string_view>(
        {"Art Institute of Chicago", "The Metropolitan Museum of Art", "Rijksmuseum",
         "Cleveland Museum of Art", "SMK Denmark", "Smithsonian Open Access"});
    return texts[static_cast<std::size_t>(source)];
}
/// What the identities of the museum's artworks begin with.
constexpr std::string_view identityPrefix(MuseumsSource source) {
    constexpr auto texts =
        std::to_array<std::string_view>({"artic:", "met:", "rijks:", "cleveland:", "smk:", "smithsonian:"});
    return texts[static_cast<std::size_t>(source)];
}

enum class MuseumsArtworkCategory { paintings, photography, drawingsAndPrints, sculpture };
constexpr auto enumNames(MuseumsArtworkCategory) {
    return std::to_array<std::string_view>({"paintings", "photography", "drawingsAndPrints", "sculpture"});
}

struct MuseumsSettings {
    std::set<MuseumsSource> sources = {MuseumsSource::artInstituteChicago, MuseumsSource::metropolitanMuseum,
                                       MuseumsSource::rijksmuseum, MuseumsSource::clevelandMuseum,
                                       MuseumsSource::smkDenmark};
    std::string smithsonianAPIKey;
    bool useAllCategories = true;
    std::set<MuseumsArtworkCategory> categories = {
        MuseumsArtworkCategory::paintings, MuseumsArtworkCategory::photography,
        MuseumsArtworkCategory::drawingsAndPrints, MuseumsArtworkCategory::sculpture};
    bool switchAutomatically = false;
    double rotationIntervalSeconds = 3600;
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    bool showsArtworkInformation = true;

    bool operator==(const MuseumsSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("sources", self.sources)
            .required("smithsonianAPIKey", self.smithsonianAPIKey)
            .required("useAllCategories", self.useAllCategories)
            .required("categories", self.categories)
            .required("switchAutomatically", self.switchAutomatically)
            .required("rotationIntervalSeconds", self.rotationIntervalSeconds)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor)
            .required("showsArtworkInformation", self.showsArtworkInformation);
    }
};

}  // namespace quillmar
