#pragma once
#include <optional>

#include "history/PictureMemory.h"
#include "remote/RemoteImageProvider.h"
#include "wallpaper/PictureSource.h"
#include "wallpaper/UnreadablePictures.h"
#include "wallpaper/WallpaperApplicationGate.h"
#include "wallpaper/WallpaperRenderer.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

/// The modes that become one picture, which is set as the desktop's: colours, files of the user's, pictures
/// of services. Main thread.
class StaticPictures final : public WallpaperPresenting {
public:
    /// A picture in its display's size, with what the settings should remember of it.
    struct Prepared {
        GeneratedPicture picture;
        WallpaperApplyOutcome outcome;
    };
    struct Services {
        DesktopPictures& desktop;
        PictureWriter& writer;
        const WallpaperApplicationGate& gate;
        WallpaperRenderer& renderer;
        Executor& executor;
        const CacheFileProtection& cacheFiles;
        RemoteImageProvider& remoteImages;
        const PictureMemory& memory;
        RandomIndex randomIndex;
    };
    explicit StaticPictures(Services services) : services_(std::move(services)) {}

    bool presents(WallpaperModeKind kind) const override;
    Task<std::unique_ptr<WallpaperPresentation>> prepare(WallpaperApplyRequest request) override;
    /// Makes the request's picture without showing it.
    Task<Prepared> prepareImage(WallpaperApplyRequest request);

private:
    Task<Prepared> fromFile(WallpaperApplyRequest request);
    Task<Prepared> fromSlideshow(WallpaperApplyRequest request);
    Task<PictureSource> nextOf(SlideshowPresentationSettings slideshow, UnreadablePictures passedOver);
    Task<Prepared> again(ShownPicture picture, DisplayInfo display);
    Task<Prepared> fromService(WallpaperApplyRequest request);
    bool isBanned(const std::filesystem::path& file) const;
    std::optional<CacheFileLease> leaseOf(const std::optional<WindowsSpotlightSelection>& selection) const;

    Services services_;
    UnreadablePictures unreadable_;
};

}  // namespace quillmar
