#pragma once
#include <string>

#include "base/Localization.h"

#include "modes/MuseumsSettings.h"
#include "modes/NasaEpicSettings.h"
#include "modes/SearchImageSettings.h"

namespace quillmar {

// What a person calls the values that a mode's fields can have.

std::string labelOf(ImagePresentationLayout value, GeneralLanguage language);
std::string labelOf(NasaEpicPresentation value, GeneralLanguage language);
std::string labelOf(NasaEpicImageProduct value, GeneralLanguage language);
std::string labelOf(WallhavenSorting value, GeneralLanguage language);
std::string labelOf(WallhavenOrder value, GeneralLanguage language);
std::string labelOf(WallhavenTopRange value, GeneralLanguage language);
std::string labelOf(WallhavenResolutionMode value, GeneralLanguage language);
std::string labelOf(UnsplashFilter value, GeneralLanguage language);
std::string labelOf(MuseumsSource value, GeneralLanguage language);
std::string labelOf(MuseumsArtworkCategory value, GeneralLanguage language);

}  // namespace quillmar
