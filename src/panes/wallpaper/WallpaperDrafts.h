#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperSettingsChange.h"

namespace quillmar {

/// What the user changed of the displays' wallpapers and has not applied yet, each display for itself, over
/// what the settings say. What the program itself remembers in the settings, such as the picture that a
/// slideshow is at, is nobody's change. Main thread.
class WallpaperDrafts {
public:
    explicit WallpaperDrafts(const AppSettingsModel& settingsModel) : settingsModel_(settingsModel) {}

    /// What the display is set to, as the draft has it where there is one.
    DisplayWallpaperSettings of(const std::string& displayID) const;
    /// The same as the settings have it.
    DisplayWallpaperSettings saved(const std::string& displayID) const;
    void edit(const std::string& displayID, const std::function<void(DisplayWallpaperSettings&)>& edit);

    /// Whether the display would show something else than the settings say.
    bool hasDraft(const std::string& displayID) const;
    /// Those that have one.
    std::vector<std::string> displays() const;
    /// Whether the settings of the display were changed elsewhere since its draft was begun or last applied.
    bool isOvertaken(const std::string& displayID) const;

    void discard(const std::string& displayID) { drafts_.erase(displayID); }
    void discardAll() { drafts_.clear(); }
    /// To be told when the settings have changed: drafts that they have come to agree with are none any more.
    void settingsDidChange();
    /// What the settings say now is what the draft is a change of: it was applied, or is to go over that.
    void rebase(const std::string& displayID);
    /// A change of the settings, with what became of it once it was made.
    struct Change {
        WallpaperSettingsChange change;
        std::shared_ptr<DisplayIDs> passedOver;  ///< somebody was faster: their settings are another's
    };
    /// Puts the drafts of these displays into the settings.
    Change change(const std::vector<std::string>& displayIDs) const;

private:
    struct Draft {
        DisplayWallpaperSettings base;  ///< what it changes
        DisplayWallpaperSettings wanted;
    };
    /// False, and nothing is changed, where the settings are not what the draft is a change of.
    static bool put(const Draft& draft, WallpaperSettings& settings);

    const AppSettingsModel& settingsModel_;
    std::map<std::string, Draft> drafts_;  ///< by display
};

/// Whether the modes differ in what the user decides.
bool differ(const WallpaperMode& one, const WallpaperMode& other);

}  // namespace quillmar
