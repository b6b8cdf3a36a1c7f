#pragma once
#include <initializer_list>
#include <string>
#include <vector>

#include "base/Uuid.h"

namespace quillmar {

/// One colour of a list. Its `id` tells it apart in editors and changes nothing that is drawn.
struct ColorFaderStop {
    Uuid id;
    std::string hexColor;

    bool operator==(const ColorFaderStop&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id).required("hexColor", self.hexColor);
    }
};

/// Stops with fresh identities for the colours, in their order.
std::vector<ColorFaderStop> freshStops(std::initializer_list<const char*> hexColors);
/// The seven colours of the rainbow with which a colour list starts.
std::vector<ColorFaderStop> freshRainbow();

/// Colours that fade into one another without an end.
struct ColorFaderPresentationSettings {
    std::vector<ColorFaderStop> colors;
    double fadeDurationSeconds = 10;

    /// What a new mode starts with: the rainbow. A plain `{}` has no colours.
    static ColorFaderPresentationSettings standard();

    bool operator==(const ColorFaderPresentationSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("colors", self.colors).required("fadeDurationSeconds", self.fadeDurationSeconds);
    }
};

}  // namespace quillmar
