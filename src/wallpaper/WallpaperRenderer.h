#pragma once
#include <filesystem>

#include "async/Executor.h"
#include "async/WallClock.h"
#include "desktop/DesktopPictures.h"
#include "display/DisplayInfo.h"
#include "modes/ImagePresentationLayout.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// A picture in a display's size.
struct GeneratedPicture {
    CacheFileLease lease;        ///< on `file`
    std::filesystem::path file;  ///< of the cache; not written yet when the picture is new
    SharedPixels pixels;         ///< null where nobody needs them
    bool isNew = false;
};

/// Makes the pictures that displays show, or finds them in the cache. Main thread. Throws
/// `WallpaperApplicationError`, and `PictureRenderingError` for a source whose reading took too long or too
/// much.
class WallpaperRenderer {
public:
    struct Services {
        std::filesystem::path cacheDirectory;
        PictureRendering& rendering;
        DesktopPictures& desktop;
        Executor& executor;  ///< for files and one-coloured pictures
        const CacheFileProtection& cacheFiles;
        const WallClock& clock;
    };
    explicit WallpaperRenderer(Services services) : services_(std::move(services)) {}

    const std::filesystem::path& cacheDirectory() const { return services_.cacheDirectory; }
    /// One colour; `hexColor` as the user wrote it.
    Task<GeneratedPicture> solidColor(std::string hexColor, DisplayInfo display);
    /// The picture of the file `source`; rendered only when no good one is in the cache. An empty caption is
    /// none; a background that is no colour is black.
    Task<GeneratedPicture> image(std::filesystem::path source, ImagePresentationLayout layout,
                                 std::string backgroundHexColor, std::string caption, DisplayInfo display);

    /// As `image`, on a canvas whose longer side is `longestSide`: to be looked at in passing, kept nowhere.
    Task<SharedPixels> smallImage(std::filesystem::path source, ImagePresentationLayout layout,
                                  std::string backgroundHexColor, DisplayInfo display, int longestSide);
    /// As `solidColor`, likewise.
    Task<SharedPixels> smallColor(std::string hexColor, DisplayInfo display, int longestSide);

private:
    /// A file of the cache and whether it can be what its name says. The lease is older than the look.
    struct Found {
        CacheFileLease lease;
        std::filesystem::path file;
        bool isThere = false;
    };
    static Found lookFor(const CacheFileProtection& cacheFiles, const std::filesystem::path& file,
                         PixelSize size, WallTime now);
    Task<std::optional<GeneratedPicture>> fromCache(Found found, DisplayInfo display);
    static GeneratedPicture madeNew(const Found& found, SharedPixels pixels);
    Task<SharedPixels> render(std::filesystem::path source, PictureComposer composer);
    Task<SharedPixels> filled(PixelSize size, RgbColor color);

    Services services_;
};

}  // namespace quillmar
