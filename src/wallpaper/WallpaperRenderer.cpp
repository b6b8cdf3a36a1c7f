#include "wallpaper/WallpaperRenderer.h"

#include <system_error>

#include "base/Files.h"
#include "base/HexColor.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/LastUsedStamp.h"
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

    const CanvasSize size = CanvasSize::of(display);
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

void WallpaperRenderer::write(const std::filesystem::path& file, const Bytes& png) const {
    try {
        writeFileAtomically(file, {reinterpret_cast<const char*>(png.data()), png.size()}, 0644,
                            Durability::reproducible);
    } catch (const std::system_error& error) {
        throw Error(Error::Case::cacheWriteFailed, file.string(), error.code().message());
    }
}

}  // namespace quillmar
