#pragma once
#include <deque>
#include <string>
#include <vector>

#include "async/WaitList.h"
#include "base/Enum.h"
#include "remote/RemoteImageProvider.h"

namespace quillmar {

/// Picture services that give the file that the test names, or the failure.
class FakeRemoteImageProvider final : public RemoteImageProvider {
public:
    explicit FakeRemoteImageProvider(const CacheFileProtection& cacheFiles) : cacheFiles_(cacheFiles) {}

    std::filesystem::path image;
    std::deque<std::filesystem::path> further;  ///< what comes after it, one for each that is asked for
    std::optional<std::string> caption;
    PictureCredit credit;
    std::optional<WindowsSpotlightSelection> selection;
    std::exception_ptr failure;
    std::vector<std::string> calls;  ///< "apod display:a advances wallpaper"

    void hold() { isHeld_ = true; }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

    Task<ResolvedRemoteImage> resolveImage(WallpaperMode mode, DisplayInfo display, bool advancesSelection,
                                           RemoteImagePresentation presentation) override {
        calls.push_back(std::string(enumName(mode.kind())) + " " + display.id +
                        (advancesSelection ? " advances " : " stays ") + std::string(enumName(presentation)));
        while (isHeld_) co_await held_.wait();
        if (failure) std::rethrow_exception(failure);
        if (advancesSelection && !further.empty()) {
            image = further.front();
            further.pop_front();
        }
        co_return ResolvedRemoteImage{
            CacheFileLease(cacheFiles_, image), image, "a credit", caption, selection, credit};
    }
    Task<ResolvedRemoteImage> resolveScreensaverImage(ManagedScreensaverMode mode, DisplayInfo display,
                                                      bool advancesSelection) override {
        co_return co_await resolveImage(*mode.wallpaperMode(), std::move(display), advancesSelection,
                                        RemoteImagePresentation::screensaver);
    }

private:
    const CacheFileProtection& cacheFiles_;
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
