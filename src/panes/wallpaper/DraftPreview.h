#pragma once
#include <exception>
#include <functional>
#include <optional>

#include "async/TaskScope.h"
#include "display/DisplayInfo.h"
#include "modes/WallpaperMode.h"
#include "platform/SettingsDisplays.h"
#include "wallpaper/WallpaperRenderer.h"

namespace quillmar {

/// A small picture of what a display would show of a mode: of colours and of files of the user's; a service
/// is not asked for it. Main thread.
class DraftPreview {
public:
    static constexpr int longestSide = 640;
    /// Who types or drags on is not drawn after at every step.
    static constexpr std::chrono::milliseconds pause{120};

    /// `files` is where the user's files are looked for; `changed` is called when the picture, or why there
    /// is none, became another.
    DraftPreview(MainLoop& loop, WallpaperRenderer& renderer, Executor& files, std::function<void()> changed)
        : renderer_(renderer), files_(files), changed_(std::move(changed)), tasks_(loop) {}

    static bool canDraw(WallpaperModeKind kind);
    /// Begins to draw, unless this is what it draws or has drawn; a former drawing is given up. The mode is
    /// one without a problem.
    void show(const DisplayInfo& display, const WallpaperMode& mode);
    void clear();

    /// Of a mode before, while the present one is drawn.
    const SettingsPicture& picture() const { return picture_; }
    /// Why there is none; null where that is not so.
    const std::exception_ptr& failure() const { return failure_; }
    bool isBusy() const { return drawing_ && !drawing_.isFinished(); }

private:
    struct Subject {
        DisplayInfo display;
        WallpaperMode mode;
        bool operator==(const Subject&) const = default;
    };
    Task<void> draw(Subject subject);
    Task<SharedPixels> drawn(Subject subject);

    WallpaperRenderer& renderer_;
    Executor& files_;
    std::function<void()> changed_;
    std::optional<Subject> subject_;
    SettingsPicture picture_;
    std::uint64_t lastVersion_ = 0;
    std::exception_ptr failure_;
    TaskHandle<void> drawing_;
    TaskScope tasks_;
};

}  // namespace quillmar
