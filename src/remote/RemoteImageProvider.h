#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "async/Task.h"
#include "display/DisplayInfo.h"
#include "modes/ManagedScreensaverMode.h"
#include "modes/RemoteImagePresentation.h"
#include "modes/WallpaperMode.h"
#include "remote/services/RemotePicture.h"
#include "storage/CacheFileLease.h"

namespace quillmar {

/// A service's picture on this machine, validated. Its texts are short, without control characters.
struct ResolvedRemoteImage {
    CacheFileLease cacheLease;  ///< on `image`
    std::filesystem::path image;
    std::optional<std::string> sourceDescription;  ///< credit or title
    std::optional<std::string> overlayCaption;     ///< to be drawn over the picture
    std::optional<WindowsSpotlightSelection> windowsSpotlightSelection;
    PictureCredit credit;
    bool operator==(const ResolvedRemoteImage&) const = default;
};

/// Finds the picture of a mode of the picture services. Main thread. Throws `RemoteImageProviderError`,
/// `std::system_error` for a disk or a helper that fails, and `CancellationError` when the task was
/// cancelled.
class RemoteImageProvider {
public:
    virtual ~RemoteImageProvider() = default;
    /// `advancesSelection` asks for the next picture, else the one that is shown comes again where the
    /// service has such a thing.
    virtual Task<ResolvedRemoteImage> resolveImage(WallpaperMode mode, DisplayInfo display,
                                                   bool advancesSelection,
                                                   RemoteImagePresentation presentation) = 0;
    virtual Task<ResolvedRemoteImage> resolveScreensaverImage(ManagedScreensaverMode mode,
                                                              DisplayInfo display,
                                                              bool advancesSelection) = 0;
};

}  // namespace quillmar
