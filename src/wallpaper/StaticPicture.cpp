#include "wallpaper/StaticPicture.h"

#include "modes/FileReadable.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/SecurityScopedFileLease.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

std::filesystem::path readableFile(const Url& url) {
    auto path = url.filePath();
    if (!path || !isReadableFile(*path)) throw Error(Error::Case::unreadableImage, url.displayPath());
    return *std::move(path);
}

StaticPicture render(const SolidColorPresentationSettings& settings, const DisplayInfo& display,
                     const WallpaperRenderer& renderer, const RandomIndex&) {
    return {renderer.solidColor(settings.hexColor, display), {}};
}

StaticPicture render(const ImagePresentationSettings& settings, const DisplayInfo& display,
                     const WallpaperRenderer& renderer, const RandomIndex&) {
    const auto draw = [&](const Url& url) {
        return StaticPicture{
            renderer.image(readableFile(url), settings.layout, settings.backgroundHexColor, {}, display), {}};
    };
    // The program's own copy needs no leave of the user.
    if (settings.cachedImageURL) return draw(*settings.cachedImageURL);
    if (!settings.imageURL) throw Error(Error::Case::missingImage);
    const SecurityScopedFileLease access(*settings.imageURL, settings.imageBookmark);
    return draw(access.url());
}

StaticPicture render(const SlideshowPresentationSettings& settings, const DisplayInfo& display,
                     const WallpaperRenderer& renderer, const RandomIndex& randomIndex) {
    if (!settings.folderURL) throw Error(Error::Case::missingSlideshowFolder);
    const SecurityScopedFileLease access(*settings.folderURL, settings.folderBookmark);
    const Url image = nextSlideshowImage(
        access.url(), {settings.includeSubfolders, settings.shuffle, settings.lastImageURL}, randomIndex);
    return {renderer.image(readableFile(image), settings.layout, settings.backgroundHexColor, {}, display),
            image};
}

StaticPicture render(const auto&, const DisplayInfo&, const WallpaperRenderer&, const RandomIndex&) {
    throw Error(Error::Case::unsupportedMode);
}

}  // namespace

bool isStaticKind(WallpaperModeKind kind) {
    switch (kind) {
        case WallpaperModeKind::solidColor:
        case WallpaperModeKind::image:
        case WallpaperModeKind::slideshow: return true;
        default: return isRemote(kind);
    }
}

StaticPicture renderStaticPicture(const WallpaperMode& mode, const DisplayInfo& display,
                                  const WallpaperRenderer& renderer, const RandomIndex& randomIndex) {
    return std::visit([&](const auto& settings) { return render(settings, display, renderer, randomIndex); },
                      mode.value);
}

}  // namespace quillmar
