#pragma once
#include <filesystem>
#include <vector>

#include "async/Executor.h"
#include "async/TaskLock.h"
#include "desktop/SpannedComposition.h"
#include "desktop/SpannedState.h"

namespace quillmar {

/// A picture for each screen on a desktop that has one for all of them, which is composed from these. A
/// monitor without a picture of ours keeps its part of the desktop's own one; the options are that one's. The
/// composed picture and what it consists of are kept in a folder of its own, so that the next process goes on
/// from there. Main thread; pictures are composed on the executor.
class SpannedDesktop final : public DesktopPicturing {
public:
    struct Services {
        SpannedDesktopPicturing& desktop;
        DesktopPicturing& root;  ///< captures the picture that no file is known for
        const ScreensProviding& screens;
        PictureRendering& rendering;
        const PictureEncoding& encoding;
        Executor& executor;
        std::filesystem::path folder;  ///< made when needed; no other PNG files lie in it
    };
    explicit SpannedDesktop(Services services) : services_(std::move(services)) {}

    bool takesPixels() const override { return true; }
    Task<void> setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions options) override;
    /// Forgotten when the monitors are arranged in another way than when the picture was composed, or when
    /// the monitor's part of it could not be had then.
    Task<PresentDesktopImage> desktopImage(Screen screen) override;
    Task<std::optional<std::filesystem::path>> captureDesktopImage(Screen screen) override;
    Task<DesktopImageOptions> desktopImageOptions(Screen screen) override;

private:
    Task<SpannedState> presentState(SpannedDesktopPicturing::Present present);
    Task<void> load();
    Task<void> showComposed(SpannedState state, DesktopImage image, Screen screen,
                            SpannedDesktopPicturing::Present present);
    Task<SharedPixels> pixelsOf(SpannedState state, Screen screen, PixelRect bounds,
                                SpannedDesktopPicturing::Present present);
    Task<void> keep(SpannedState state);
    Task<std::optional<std::filesystem::path>> existing(std::filesystem::path file);

    Services services_;
    std::optional<SpannedState> state_;  ///< absent until it is read
    std::set<std::string> missing_;      ///< connectors of ours that the composed picture shows in its colour
    TaskLock order_;
};

}  // namespace quillmar
