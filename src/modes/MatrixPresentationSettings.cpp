#include "modes/MatrixPresentationSettings.h"

namespace quillmar {

MatrixPresentationSettings MatrixPresentationSettings::standard() {
    MatrixPresentationSettings settings;
    settings.paletteColors = freshStops({"#000000", "#056105", "#85F370", "#ADF99E"});
    settings.stripeColors = freshRainbow();
    return settings;
}

}  // namespace quillmar
