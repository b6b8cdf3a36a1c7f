#pragma once
#include <array>
#include <string>
#include <string_view>

namespace quillmar {

/// How a picture meets the edges of its display.
enum class ImagePresentationLayout { center, tile, stretch, fit, fill };
constexpr auto enumNames(ImagePresentationLayout) {
    return std::to_array<std::string_view>({"center", "tile", "stretch", "fit", "fill"});
}

/// What every mode that shows pictures says about them.
struct ImagePresentation {
    ImagePresentationLayout layout = ImagePresentationLayout::fit;
    std::string backgroundHexColor = "#000000";
    bool operator==(const ImagePresentation&) const = default;
};

}  // namespace quillmar
