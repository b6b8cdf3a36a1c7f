#include "wallpaper/WallpaperRenderer.h"

#include <system_error>

#include "base/Files.h"
#include "base/HexColor.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/LastUsedStamp.h"
#include "wallpaper/CanvasLayout.h"
#include "wallpaper/GeneratedWallpaper.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

void createCacheDirectory(const std::filesystem::path& directory) {
    try {
        createDirectories(directory, 0700);
    } catch (const std::system_error& error) {
        throw Error(Error::Case::cacheDirectoryUnavailable, directory.string(), error.code().message());
    }
}

}  // namespace

std::filesystem::path WallpaperRenderer::solidColor(const std::string& hexColor,
                                                    const DisplayInfo& display) const {
    const std::string normalized = normalizedHexColor(hexColor);
    const auto color = parseHexColor(normalized);
    if (!color) throw Error(Error::Case::invalidSolidColor, hexColor);
    createCacheDirectory(cacheDirectory_);

    const PixelSize size = canvasSize(display);
    std::filesystem::path file = cacheDirectory_ / solidColorFileName(display, size, normalized);
    if (!isValidGeneratedPng(file, size)) {
        Bytes png;
        try {
            png = rendering_.solidColorPng(size.width, size.height, *color);
        } catch (const std::exception&) {  // the message of the case says all that helps the user
            throw Error(Error::Case::solidColorRenderingFailed);
        }
        write(file, png);
    }
    stampLastUsed(file, clock_.now());
    return file;
}

std::filesystem::path WallpaperRenderer::image(const std::filesystem::path& source,
                                               ImagePresentationLayout layout,
                                               const std::string& backgroundHexColor,
                                               const std::string& caption, const DisplayInfo& display) const {
    createCacheDirectory(cacheDirectory_);
    const Canvas canvas = Canvas::of(display);
    const PixelSize size{canvas.size.width, canvas.size.height};
    const std::string background = normalizedHexColor(backgroundHexColor);
    std::filesystem::path file =
        cacheDirectory_ / imageFileName(display, size, layout, background, imageFingerprint(source, caption));
    if (!isValidGeneratedPng(file, size)) {
        const RgbColor color = parseHexColor(background).value_or(RgbColor{});
        const auto composer = [&](PixelSize picture) {
            return compositionOf(layout, canvas, color, caption, picture);
        };
        render(source, composer, file);
    }
    stampLastUsed(file, clock_.now());
    return file;
}

void WallpaperRenderer::render(const std::filesystem::path& source, const PictureComposer& composer,
                               const std::filesystem::path& file) const {
    try {
        rendering_.renderImage(source, composer, file);
    } catch (const PictureDecodingError&) {  // the messages of the cases say all that helps the user
        throw Error(Error::Case::unreadableImage, source.string());
    } catch (const std::system_error& error) {
        throw Error(Error::Case::cacheWriteFailed, file.string(), error.code().message());
    } catch (const std::exception&) {
        throw Error(Error::Case::imageRenderingFailed);
    }
}

void WallpaperRenderer::write(const std::filesystem::path& file, const Bytes& png) const {
    try {
        writeFileAtomically(file, {reinterpret_cast<const char*>(png.data()), png.size()}, 0644,
                            Durability::reproducible);
    } catch (const std::system_error& error) {
        throw Error(Error::Case::cacheWriteFailed, file.string(), error.code().message());
    }
}

}  // namespace quillmar
