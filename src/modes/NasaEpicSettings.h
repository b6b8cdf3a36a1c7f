#pragma once
#include <array>
#include <string>
#include <string_view>

#include "modes/ImagePresentationLayout.h"

namespace quillmar {

enum class NasaEpicPresentation { latestObservation, rotateThroughDays };
constexpr auto enumNames(NasaEpicPresentation) {
    return std::to_array<std::string_view>({"latestObservation", "rotateThroughDays"});
}
/// The name is also the word in the service's paths.
enum class NasaEpicImageProduct { natural, enhanced };
constexpr auto enumNames(NasaEpicImageProduct) {
    return std::to_array<std::string_view>({"natural", "enhanced"});
}

/// Whole-Earth pictures: the newest one, or those of the last days like a slow film.
struct NasaEpicSettings {
    NasaEpicPresentation presentation = NasaEpicPresentation::latestObservation;
    double secondsPerObservation = 30;
    int recentDays = 1;
    NasaEpicImageProduct imageProduct = NasaEpicImageProduct::natural;
    bool usesFullResolutionPNG = false;
    bool showsCreditAndObservationTime = true;
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";

    bool operator==(const NasaEpicSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("presentation", self.presentation)
            .required("secondsPerObservation", self.secondsPerObservation)
            .required("recentDays", self.recentDays)
            .required("imageProduct", self.imageProduct)
            .required("usesFullResolutionPNG", self.usesFullResolutionPNG)
            .required("showsCreditAndObservationTime", self.showsCreditAndObservationTime)
            .required("layout", self.layout)
            .required("backgroundHexColor", self.backgroundHexColor);
    }
};

}  // namespace quillmar
