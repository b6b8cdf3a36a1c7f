#pragma once
#include <filesystem>

#include "async/WallClock.h"
#include "display/DisplayInfo.h"
#include "modes/ImagePresentationLayout.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// Renders the files that displays show into the cache, or finds them there. Safe to use from several threads
/// at once.
class WallpaperRenderer {
public:
    WallpaperRenderer(std::filesystem::path cacheDirectory, const PictureRendering& rendering,
                      const WallClock& clock)
        : cacheDirectory_(std::move(cacheDirectory)), rendering_(rendering), clock_(clock) {}

    const std::filesystem::path& cacheDirectory() const { return cacheDirectory_; }
    /// A file of one colour in the display's size. `hexColor` as the user wrote it. Throws
    /// `WallpaperApplicationError`.
    std::filesystem::path solidColor(const std::string& hexColor, const DisplayInfo& display) const;

    /// A file with the picture `source` in the display's size; rendered only when no valid one is there. An
    /// empty caption is none; a background that is no colour is black. Throws `WallpaperApplicationError`.
    std::filesystem::path image(const std::filesystem::path& source, ImagePresentationLayout layout,
                                const std::string& backgroundHexColor, const std::string& caption,
                                const DisplayInfo& display) const;

private:
    void render(const std::filesystem::path& source, const PictureComposer& composer,
                const std::filesystem::path& file) const;
    void write(const std::filesystem::path& file, const Bytes& png) const;

    std::filesystem::path cacheDirectory_;
    const PictureRendering& rendering_;
    const WallClock& clock_;
};

}  // namespace quillmar
