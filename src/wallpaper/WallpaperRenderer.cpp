#include "wallpaper/WallpaperRenderer.h"

#include <system_error>

#include "base/Files.h"
#include "base/HexColor.h"
#include "desktop/CanvasLayout.h"
#include "diagnostics/Log.h"
#include "modes/WallpaperApplicationError.h"
#include "platform/PictureRenderingError.h"
#include "storage/LastUsedStamp.h"
#include "wallpaper/GeneratedWallpaper.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Error = WallpaperApplicationError;

void createCacheDirectory(const fs::path& directory) {
    try {
        createDirectories(directory, 0700);
    } catch (const std::system_error& error) {
        throw Error(Error::Case::cacheDirectoryUnavailable, directory.string(), error.code().message());
    }
}

}  // namespace

/// Stamps a file that can be used, so that no sweep takes it for forgotten.
WallpaperRenderer::Found WallpaperRenderer::lookFor(const CacheFileProtection& cacheFiles,
                                                    const fs::path& file, PixelSize size, WallTime now) {
    createCacheDirectory(file.parent_path());
    Found found{CacheFileLease(cacheFiles, file), file};
    found.isThere = isValidGeneratedPng(file, size);
    if (found.isThere) stampLastUsed(file, now);
    return found;
}

Task<GeneratedPicture> WallpaperRenderer::solidColor(std::string hexColor, DisplayInfo display) {
    const std::string normalized = normalizedHexColor(hexColor);
    const auto color = parseHexColor(normalized);
    if (!color) throw Error(Error::Case::invalidSolidColor, hexColor);
    const PixelSize size = canvasSize(display);
    const fs::path file = services_.cacheDirectory / solidColorFileName(display, size, normalized);
    const Found found = co_await services_.executor.run(
        [cacheFiles = &services_.cacheFiles, file, size, now = services_.clock.now()] {
            return lookFor(*cacheFiles, file, size, now);
        });
    if (auto cached = co_await fromCache(found, display)) co_return *std::move(cached);
    co_return madeNew(found, co_await filled(size, *color));
}

Task<SharedPixels> WallpaperRenderer::filled(PixelSize size, RgbColor color) {
    try {
        co_return co_await services_.executor.run([size, color]() -> SharedPixels {
            auto buffer = std::make_shared<PixelBuffer>(size);
            buffer->fill(color);
            return buffer;
        });
    } catch (const std::system_error&) {  // the message of the case says all that helps the user
        throw Error(Error::Case::solidColorRenderingFailed);
    }
}

Task<SharedPixels> WallpaperRenderer::smallColor(std::string hexColor, DisplayInfo display, int longestSide) {
    const auto color = parseHexColor(normalizedHexColor(hexColor));
    if (!color) throw Error(Error::Case::invalidSolidColor, hexColor);
    const PixelSize size = scaledDown({.canvas = canvasSize(display)}, longestSide).canvas;
    co_return co_await filled(size, *color);
}

Task<SharedPixels> WallpaperRenderer::smallImage(fs::path source, ImagePresentationLayout layout,
                                                 std::string backgroundHexColor, DisplayInfo display,
                                                 int longestSide) {
    const Canvas canvas = Canvas::of(display);
    const RgbColor color = parseHexColor(normalizedHexColor(backgroundHexColor)).value_or(RgbColor{});
    co_return co_await render(std::move(source), [=](PixelSize picture) {
        return scaledDown(compositionOf(layout, canvas, color, "", picture), longestSide);
    });
}

Task<GeneratedPicture> WallpaperRenderer::image(fs::path source, ImagePresentationLayout layout,
                                                std::string backgroundHexColor, std::string caption,
                                                DisplayInfo display) {
    const Canvas canvas = Canvas::of(display);
    const std::string background = normalizedHexColor(backgroundHexColor);
    const Found found =
        co_await services_.executor.run([=, cacheFiles = &services_.cacheFiles, size = canvas.size,
                                         now = services_.clock.now(), directory = services_.cacheDirectory] {
            const std::string fingerprint = imageFingerprint(source, caption);
            const std::string name = imageFileName(display, size, layout, background, fingerprint);
            return lookFor(*cacheFiles, directory / name, size, now);
        });
    if (auto cached = co_await fromCache(found, display)) co_return *std::move(cached);
    const RgbColor color = parseHexColor(background).value_or(RgbColor{});
    SharedPixels pixels = co_await render(
        source, [=](PixelSize picture) { return compositionOf(layout, canvas, color, caption, picture); });
    co_return madeNew(found, std::move(pixels));
}

/// Nothing when there is none, or when it turns out to be damaged: then it makes room for a new one.
Task<std::optional<GeneratedPicture>> WallpaperRenderer::fromCache(Found found, DisplayInfo display) {
    if (!found.isThere) co_return std::nullopt;
    GeneratedPicture picture{.lease = found.lease, .file = found.file};
    if (co_await services_.desktop.isShown(display.id, found.file)) co_return picture;
    if (co_await services_.desktop.takesPixels()) {
        picture.pixels = co_await services_.rendering.load(found.file, canvasSize(display));
        if (picture.pixels) co_return picture;
    } else if (co_await services_.rendering.isPicture(found.file)) {
        co_return picture;
    }
    co_await services_.executor.run([file = found.file] {
        std::error_code ignored;  // what cannot be removed is written over
        fs::remove(file, ignored);
    });
    co_return std::nullopt;
}

GeneratedPicture WallpaperRenderer::madeNew(const Found& found, SharedPixels pixels) {
    return {found.lease, found.file, std::move(pixels), true};
}

Task<SharedPixels> WallpaperRenderer::render(fs::path source, PictureComposer composer) {
    try {
        co_return co_await services_.rendering.render(source, std::move(composer));
    } catch (const PictureRenderingError& error) {
        // The messages of these two cases say all that helps the user.
        if (error.errorCase() == PictureRenderingError::Case::unreadable) {
            throw Error(Error::Case::unreadableImage, source.string());
        }
        if (error.errorCase() != PictureRenderingError::Case::failed) throw;
    } catch (const std::system_error&) {
        logWarning("The reading of a picture could not be begun.", "wallpaper", std::current_exception());
    }
    throw Error(Error::Case::imageRenderingFailed);
}

}  // namespace quillmar
