#pragma once
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "async/TaskLock.h"
#include "async/TaskScope.h"
#include "desktop/FormerPictures.h"
#include "desktop/LastShownPictures.h"
#include "desktop/PictureWriter.h"
#include "display/DisplayService.h"
#include "platform/DesktopPicture.h"
#include "storage/CacheSweep.h"

namespace quillmar {

/// What a display showed at a moment, to be shown again.
struct DesktopSnapshot {
    std::string displayID;
    std::filesystem::path image;
    DesktopImageOptions options;
    CacheFileLease cacheLease;  ///< on `image`
};

/// The pictures behind everything, by display: the one door to the desktop for all features. It remembers
/// what each display must show, keeps those files from being swept, and shows them again where the desktop
/// forgot them. Changes of one display happen one after the other; one display never waits for another's.
/// Main thread. What it throws: `WallpaperApplicationError` for a display that is gone, a snapshot that
/// cannot be taken and a file that cannot be written; `DesktopPictureError` for a desktop that refuses, and
/// then the display shows what it showed before; `PictureRenderingError` for a file that has to be read.
class DesktopPictures {
public:
    struct Services {
        MainLoop& loop;
        const DisplayService& displays;
        const ScreensProviding& screens;
        DesktopChoosing& choosing;
        PictureRendering& rendering;
        const PictureEncoding& encoding;
        PictureWriter& writer;
        const CacheFileProtection& cacheFiles;
        Executor& executor;
        std::filesystem::path folder;  ///< for what outlives the process; made when needed
    };
    explicit DesktopPictures(Services services);
    ~DesktopPictures();

    /// Whether `set` wants the pixels; else the file has to be there.
    Task<bool> takesPixels();
    /// Whether the display shows that file, as the desktop says.
    Task<bool> isShown(std::string displayID, std::filesystem::path file);
    /// Makes it the picture of the display. `image.pixels` have the size of the display's canvas; where the
    /// desktop wants a file, it is written first.
    Task<void> set(std::string displayID, DesktopImage image);
    /// The file that the display was given last; absent when it was given none.
    std::optional<std::filesystem::path> mustShow(const std::string& displayID) const;
    /// Whether what displays show is lost with the session.
    Task<bool> forgetsWithSession();
    /// Whether it was given back since: what it shows is no longer the program's.
    bool isGivenBack(const std::string& displayID) const { return givenBack_.contains(displayID); }
    /// Calls back each time a display was given a picture, or given back. Replaces the former handler.
    void setShownHandler(std::function<void(const std::string& displayID)> handler) {
        shownHandler_ = std::move(handler);
    }
    /// What the display shows now.
    Task<DesktopSnapshot> capture(std::string displayID);
    Task<void> restore(DesktopSnapshot snapshot);
    /// Remembers across starts what the display showed before it was given its first picture.
    Task<void> keepFormer(std::string displayID, std::filesystem::path image, DesktopImageOptions options);
    /// Gives it back, where it is known and the display still shows a picture that it was given. Failures
    /// are logged.
    Task<void> giveBack(std::string displayID);
    /// Removes the copies of former pictures that no display gets back any more.
    Task<void> removeForgottenFormer();
    /// Shows again what the display was given last, where the desktop has forgotten it with the session or
    /// the plug: until its picture is there. Nothing for a display that is gone. Failures are logged.
    Task<void> recall(std::string displayID);
    /// Shows again on every display what it must show and the desktop has forgotten. Failures are logged.
    Task<void> repaintForgotten();
    /// The file of each connected display that one is known for: as the desktop says or, where it does not
    /// answer within half a second, or is being given a picture, as it said last.
    Task<std::map<std::string, std::filesystem::path>> shown();
    /// Why no display can be given a picture at all, as `shown` found out last; null where one can.
    std::exception_ptr obstacle() const { return obstacle_; }

private:
    class Setting;
    Task<DesktopPicturing*> desktop();
    Screen screenOf(const std::string& displayID) const;
    Task<void> show(std::string displayID, DesktopImage image, DesktopImageOptions options);
    Task<void> showInTurn(std::string displayID, DesktopImage image, DesktopImageOptions options);
    Task<void> recallInTurn(std::string displayID);
    Task<void> giveBackInTurn(std::string displayID);
    Task<void> showOrPutBack(DesktopPicturing* desktop, DesktopImage image, Screen screen,
                             DesktopImageOptions options);
    Task<SharedPixels> pixelsOf(std::filesystem::path file, Screen screen);
    void remember(const std::string& displayID, const Screen& screen, CacheFileLease lease,
                  std::filesystem::path file);
    Task<void> repaintIfForgotten(std::string displayID);
    Task<void> askForShown();

    Services services_;
    LastShownPictures lastShown_;
    FormerPictures former_;
    std::unique_ptr<DesktopPicturing> spanned_;
    DesktopPicturing* desktop_ = nullptr;  ///< null until the desktop's way is known
    bool forgetsWithSession_ = false;
    int beingSet_ = 0;                                       ///< how many pictures the desktop is being given
    std::map<std::string, TaskLock> order_;                  ///< by display
    std::map<std::string, std::filesystem::path> mustShow_;  ///< by display
    std::map<std::string, CacheFileLease> leases_;           ///< by display: on what it shows
    std::map<std::string, std::filesystem::path> lastKnown_;  ///< by display: what the desktop said
    std::set<std::string> givenBack_;                         ///< displays
    std::function<void(const std::string&)> shownHandler_;
    TaskHandle<void> asking_;
    std::exception_ptr obstacle_;
    TaskScope tasks_;
};

}  // namespace quillmar
