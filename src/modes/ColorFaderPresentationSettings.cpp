#include "modes/ColorFaderPresentationSettings.h"

namespace quillmar {

std::vector<ColorFaderStop> freshStops(std::initializer_list<const char*> hexColors) {
    std::vector<ColorFaderStop> stops;
    for (const char* hexColor : hexColors) stops.push_back({Uuid::random(), hexColor});
    return stops;
}

std::vector<ColorFaderStop> freshRainbow() {
    return freshStops({"#FF0000", "#FFA500", "#FFFF00", "#008000", "#00FFFF", "#0000FF", "#8000FF"});
}

ColorFaderPresentationSettings ColorFaderPresentationSettings::standard() {
    return {.colors = freshRainbow()};
}

}  // namespace quillmar
