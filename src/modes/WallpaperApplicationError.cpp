#include "modes/WallpaperApplicationError.h"

#include <array>

namespace quillmar {
namespace {

/// In the order of the cases. A "%@" takes the value, a second one the reason.
constexpr auto messages = std::to_array<TextKey>({
    "The display with ID %@ is no longer connected."_key,
    "%@ is not a valid six-digit hex color."_key,
    "%@ is not a valid six-digit color fader color."_key,
    "%@ is not a valid HTTP or HTTPS webpage URL."_key,
    "The webpage could not be loaded: %@ Check the address and connection, then retry."_key,
    "Quillmar cannot read the selected video at %@. Choose the file again."_key,
    "Quillmar cannot read the selected PDF at %@. Choose the file again."_key,
    "The selected camera %@ is unavailable. Reconnect it or choose another camera, then retry."_key,
    "Quillmar cannot read the selected image at %@."_key,
    "Quillmar could not create its wallpaper cache at %@: %@."_key,
    "Quillmar could not save the generated wallpaper at %@: %@."_key,
    "Quillmar could not capture the current desktop for display ID %@."_key,
    "Add at least two colors to the color fader."_key,
    "The color fader supports up to 10 colors."_key,
    "Set the color fade duration between one second and 23:59:59."_key,
    "Choose an image for this mode."_key,
    "Choose an image folder before applying this slideshow."_key,
    "Set the slideshow interval between one second and 23:59:59."_key,
    "Enter an Unsplash access key for this mode."_key,
    "Enter a Wallhaven API key to use the NSFW category."_key,
    "Choose at least one Wallhaven category."_key,
    "Choose at least one Wallhaven purity level."_key,
    "Enter a topic, user, or search term for Unsplash."_key,
    "Choose at least one museum source."_key,
    "Choose at least one artwork category."_key,
    "Enter a Smithsonian Open Access API key or disable that source."_key,
    "Set the automatic switch interval between one second and 23:59:59."_key,
    "Set the NASA EPIC observation duration between 10 and 86399 seconds."_key,
    "Choose between 1 and 7 recent days for NASA EPIC."_key,
    "Set the Hexells automatic change interval between one second and 23:59:59."_key,
    "Enter a webpage URL for this mode."_key,
    "The webpage did not start loading in time. Check the address and connection, then retry."_key,
    "Choose a video for this mode."_key,
    "The bundled HTML video player is unavailable. Reinstall Quillmar and try again."_key,
    "The video could not be decoded or played. Choose a different video file, then retry."_key,
    "The video did not become ready in time. Check the file, then retry."_key,
    "Choose a video folder before applying this playlist."_key,
    "Choose a PDF for this mode."_key,
    "The bundled PDF.js viewer is unavailable. Reinstall Quillmar and try again."_key,
    "The PDF viewer could not render the first page. Choose the PDF again or use a different file, then retry."_key,
    "The PDF viewer did not render the first page in time. Check the PDF, then retry."_key,
    "The Matrix renderer could not start. Check its media and renderer settings, then retry."_key,
    "The Matrix renderer did not become ready in time. Check its settings, then retry."_key,
    "Camera access is off for Quillmar. Allow it in the desktop's privacy settings, then retry."_key,
    "The Hexells renderer could not start. Retry or review its settings."_key,
    "The Hexells renderer did not become ready in time. Retry or review its settings."_key,
    "This wallpaper mode is not available yet."_key,
    "Quillmar could not render the solid color image."_key,
    "Quillmar could not render the selected image for this display."_key,
    "The wallpaper request was skipped while the Lock Screen override was active."_key,
    "There is no earlier picture."_key,
    "The service has only pictures that are in the trash."_key,
});
static_assert(messages.size() ==
              static_cast<std::size_t>(WallpaperApplicationError::Case::remoteImagesInTrash) + 1);

}  // namespace

std::string WallpaperApplicationError::message(GeneralLanguage language) const {
    if (case_ == Case::matrixCameraUnavailable && value_.empty()) {
        return localized("No camera is available. Connect a camera, then retry."_key, language);
    }
    return localized(messages[static_cast<std::size_t>(case_)], language, {value_, reason_});
}

}  // namespace quillmar
