#pragma once
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "async/TaskScope.h"
#include "desktop/DesktopPictures.h"
#include "platform/SettingsDisplays.h"
#include "wallpaper/WallpaperRenderer.h"

namespace quillmar {

/// Small pictures of what each display shows now, while somebody looks at them. Main thread.
class ShownThumbnails {
public:
    static constexpr int longestSide = 512;

    struct Services {
        MainLoop& loop;
        const DisplayProviding& displays;
        DesktopPictures& desktop;
        PictureWriter& writer;
        WallpaperRenderer& renderer;
    };
    /// `changed` is called when a picture became another.
    ShownThumbnails(Services services, std::function<void()> changed)
        : services_(services), changed_(std::move(changed)), tasks_(services.loop) {}

    /// Looks what displays show, and draws what is new.
    void refresh();
    /// Nobody looks any more: the pictures are let go.
    void clear();
    /// Without pixels while there is none.
    SettingsPicture of(const std::string& displayID) const;

private:
    struct Thumbnail {
        std::filesystem::path file;
        PixelSize canvas;
        SettingsPicture picture;
    };
    Task<void> look();
    Task<void> draw(DisplayInfo display, std::filesystem::path file);

    Services services_;
    std::function<void()> changed_;
    std::map<std::string, Thumbnail> thumbnails_;  ///< by display
    std::uint64_t lastVersion_ = 0;
    TaskHandle<void> looking_;
    bool looksAgain_ = false;
    TaskScope tasks_;
};

}  // namespace quillmar
