#pragma once
#include <filesystem>

#include "async/WallClock.h"
#include "display/DisplayInfo.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// Renders the files that displays show into the cache, or finds them there. Safe to use from several threads
/// at once.
class WallpaperRenderer {
public:
    WallpaperRenderer(std::filesystem::path cacheDirectory, const PictureRendering& rendering,
                      const WallClock& clock)
        : cacheDirectory_(std::move(cacheDirectory)), rendering_(rendering), clock_(clock) {}

    /// A file of one colour in the display's size. `hexColor` as the user wrote it. Throws
    /// `WallpaperApplicationError`.
    std::filesystem::path solidColor(const std::string& hexColor, const DisplayInfo& display) const;

private:
    void write(const std::filesystem::path& file, const Bytes& png) const;

    std::filesystem::path cacheDirectory_;
    const PictureRendering& rendering_;
    const WallClock& clock_;
};

}  // namespace quillmar
