#include "wallpaper/PictureSource.h"

#include "modes/FileReadable.h"
#include "modes/WallpaperApplicationError.h"
#include "platform/PictureRenderingError.h"
#include "storage/SecurityScopedFileLease.h"
#include "wallpaper/SlideshowImageLibrary.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

std::filesystem::path readableFile(const Url& url) {
    auto path = url.filePath();
    if (!path || !isReadableFile(*path)) throw Error(Error::Case::unreadableImage, url.displayPath());
    return *std::move(path);
}

}  // namespace

PictureSource pictureSource(const ImagePresentationSettings& settings) {
    // The program's own copy needs no leave of the user.
    if (settings.cachedImageURL) return {.file = readableFile(*settings.cachedImageURL)};
    if (!settings.imageURL) throw Error(Error::Case::missingImage);
    auto access = std::make_shared<const SecurityScopedFileLease>(*settings.imageURL, settings.imageBookmark);
    std::filesystem::path file = readableFile(access->url());
    return {.file = std::move(file), .access = std::move(access)};
}

PictureSource pictureSource(const SlideshowPresentationSettings& settings, const RandomIndex& randomIndex,
                            std::function<bool(const Url&)> isLeftOut) {
    if (!settings.folderURL) throw Error(Error::Case::missingSlideshowFolder);
    auto access =
        std::make_shared<const SecurityScopedFileLease>(*settings.folderURL, settings.folderBookmark);
    Url image = nextSlideshowImage(
        access->url(),
        {settings.includeSubfolders, settings.shuffle, settings.lastImageURL, std::move(isLeftOut)},
        randomIndex);
    std::filesystem::path file = *image.filePath();
    return {
        .file = std::move(file), .access = std::move(access), .selectedSlideshowImageURL = std::move(image)};
}

bool isFaultOfFile(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const Error& error) {
        return error.errorCase() == Error::Case::unreadableImage;
    } catch (const PictureRenderingError& error) {
        return error.errorCase() != PictureRenderingError::Case::noDecoder;
    } catch (...) {
        return false;
    }
}

bool mayPassWithTime(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const PictureRenderingError& error) {
        return error.errorCase() == PictureRenderingError::Case::decoderFailed;
    } catch (...) {
        return false;
    }
}

}  // namespace quillmar
