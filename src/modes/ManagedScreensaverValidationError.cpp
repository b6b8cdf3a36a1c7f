#include "modes/ManagedScreensaverValidationError.h"

#include <array>

namespace quillmar {
namespace {

/// In the order of the cases.
constexpr auto messages = std::to_array<TextKey>({
    "Enter a Shadertoy shader ID."_key,
    "A Shadertoy shader ID can contain only letters and numbers."_key,
    "Choose valid clock colors, a font, and a font size from 24 to 500 points."_key,
    "Choose a valid alarm time."_key,
    "Set a duration between one second and 23:59:59."_key,
    "Choose a custom sound file or select a built-in sound."_key,
});
static_assert(messages.size() ==
              static_cast<std::size_t>(ManagedScreensaverValidationError::Case::missingCustomSound) + 1);

}  // namespace

std::string ManagedScreensaverValidationError::message(GeneralLanguage language) const {
    return localized(messages[static_cast<std::size_t>(case_)], language);
}

}  // namespace quillmar
