#pragma once
#include <array>
#include <string_view>

namespace quillmar {

enum class MatrixVersion {
    classic,
    threeD,
    trinity,
    morpheus,
    operator_,
    bugs,
    mirror,
    mirrorWithCamera,
    pride,
    megacity,
    neomatrixology,
    nightmare,
    paradise,
    resurrections,
    palimpsest,
    twilight
};
constexpr auto enumNames(MatrixVersion) {
    return std::to_array<std::string_view>({"classic", "threeD", "trinity", "morpheus", "operator", "bugs",
                                            "mirror", "mirrorWithCamera", "pride", "megacity",
                                            "neomatrixology", "nightmare", "paradise", "resurrections",
                                            "palimpsest", "twilight"});
}

/// The names are also what the page is asked with.
enum class MatrixFont {
    matrixcode,
    coptic,
    gothic,
    megacity,
    resurrections,
    huberfishA,
    huberfishD,
    gtargTenretniolleh,
    gtargAlientext,
    neomatrixology
};
constexpr auto enumNames(MatrixFont) {
    return std::to_array<std::string_view>({"matrixcode", "coptic", "gothic", "megacity", "resurrections",
                                            "huberfishA", "huberfishD", "gtarg_tenretniolleh",
                                            "gtarg_alientext", "neomatrixology"});
}

enum class MatrixEffect { plain, palette, customStripes, image, video };
constexpr auto enumNames(MatrixEffect) {
    return std::to_array<std::string_view>({"plain", "palette", "customStripes", "image", "video"});
}

enum class MatrixRenderer { regl, webGPU };
constexpr auto enumNames(MatrixRenderer) { return std::to_array<std::string_view>({"regl", "webGPU"}); }

enum class MatrixRippleType { none, box, circle };
constexpr auto enumNames(MatrixRippleType) {
    return std::to_array<std::string_view>({"none", "box", "circle"});
}

}  // namespace quillmar
