#pragma once
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "async/TaskScope.h"
#include "async/WaitList.h"
#include "imports/MediaImportCoordinator.h"
#include "panes/wallpaper/WallpaperDrafts.h"
#include "platform/FileChoosing.h"

namespace quillmar {

/// The files and folders that drafts name: the user chooses them in a dialog, and of a picture the program
/// takes its own copy before the draft has it. Main thread.
class DraftFiles {
public:
    struct Services {
        MainLoop& loop;
        const AppSettingsModel& settingsModel;
        FileChoosing& chooser;
        MediaImportCoordinator& imports;
        Executor& files;  ///< where the user's files are looked at
        const CacheFileProtection& cacheFiles;
    };
    /// `changed` is called with the display whose draft has got a file, or has not.
    DraftFiles(Services services, WallpaperDrafts& drafts, std::function<void(const std::string&)> changed)
        : services_(services), drafts_(drafts), changed_(std::move(changed)), tasks_(services.loop) {}
    DraftFiles(const DraftFiles&) = delete;
    DraftFiles& operator=(const DraftFiles&) = delete;
    ~DraftFiles();

    /// Asks for the file of the display's present mode. Nothing for one that has none.
    void choose(const std::string& displayID);
    bool isImporting(const std::string& displayID) const { return importing_.contains(displayID); }
    bool isImporting() const { return !importing_.empty(); }
    /// Waits until nothing is copied any more. Of what was, a display whose file was not taken; none if all
    /// were.
    Task<std::optional<std::string>> settled();
    /// Why the file that was chosen last was not taken; empty if it was.
    std::string problemOf(const std::string& displayID) const;
    /// The display's draft is gone, or of another kind: what is chosen for it just now is not wanted.
    void forget(const std::string& displayID);
    void forgetAll();
    /// Removes the copies that neither a draft nor the settings name.
    void cleanUp();

private:
    static MediaImportSlot slotOf(const std::string& displayID) {
        return {displayID, MediaImportSlot::Role::image};
    }
    Task<void> chooseImage(std::string displayID);
    Task<void> chooseFolder(std::string displayID);
    void take(const std::string& displayID, const Url& source, const std::optional<Bytes>& grant,
              const std::expected<Url, MediaImportError>& copy);
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    Services services_;
    WallpaperDrafts& drafts_;
    std::function<void(const std::string&)> changed_;
    std::map<std::string, MediaImportError> problems_;  ///< by display
    /// The copies that were taken for drafts. No sweep takes them, though the settings do not name them yet.
    std::map<Url, CacheFileLease> copies_;
    std::set<std::string> importing_;  ///< displays
    WaitList waiting_;                 ///< for the end of an import
    TaskScope tasks_;
};

}  // namespace quillmar
