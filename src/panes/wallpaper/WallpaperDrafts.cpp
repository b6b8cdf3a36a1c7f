#include "panes/wallpaper/WallpaperDrafts.h"

namespace quillmar {
namespace {

/// What the program remembers for a mode goes over to another of the kind, if it still means the same there.
void takeMemory(auto&, const auto&) {}
void takeMemory(SlideshowPresentationSettings& to, const SlideshowPresentationSettings& from) {
    to.lastImageURL = to.folderURL == from.folderURL ? from.lastImageURL : std::nullopt;
}
void takeMemory(WindowsSpotlightSettings& to, const WindowsSpotlightSettings& from) {
    to.lastSelection = to.locale == from.locale ? from.lastSelection : std::nullopt;
}

WallpaperMode withMemoryOf(WallpaperMode mode, const WallpaperMode& other) {
    std::visit(
        [&]<class Settings>(Settings& settings) {
            if (const auto* same = std::get_if<Settings>(&other.value)) takeMemory(settings, *same);
        },
        mode.value);
    return mode;
}

}  // namespace

bool differ(const WallpaperMode& one, const WallpaperMode& other) {
    return withMemoryOf(one, other) != other;
}

DisplayWallpaperSettings WallpaperDrafts::saved(const std::string& displayID) const {
    const auto* entry = findEntry(settingsModel_.settings().wallpaper.displays, displayID);
    return entry ? *entry : DisplayWallpaperSettings{.displayID = displayID};
}

DisplayWallpaperSettings WallpaperDrafts::of(const std::string& displayID) const {
    const auto draft = drafts_.find(displayID);
    return draft == drafts_.end() ? saved(displayID) : draft->second.wanted;
}

void WallpaperDrafts::edit(const std::string& displayID,
                           const std::function<void(DisplayWallpaperSettings&)>& edit) {
    auto draft = drafts_.find(displayID);
    if (draft == drafts_.end()) {
        const DisplayWallpaperSettings now = saved(displayID);
        draft = drafts_.emplace(displayID, Draft{now, now}).first;
    }
    edit(draft->second.wanted);
}

bool WallpaperDrafts::hasDraft(const std::string& displayID) const {
    const auto draft = drafts_.find(displayID);
    return draft != drafts_.end() && differ(draft->second.wanted.mode, saved(displayID).mode);
}

std::vector<std::string> WallpaperDrafts::displays() const {
    std::vector<std::string> ids;
    for (const auto& [id, draft] : drafts_) {
        if (hasDraft(id)) ids.push_back(id);
    }
    return ids;
}

bool WallpaperDrafts::isOvertaken(const std::string& displayID) const {
    return hasDraft(displayID) && differ(drafts_.at(displayID).base.mode, saved(displayID).mode);
}

void WallpaperDrafts::settingsDidChange() {
    std::erase_if(drafts_, [this](const auto& each) {
        return !hasDraft(each.first) && differ(each.second.base.mode, saved(each.first).mode);
    });
}

void WallpaperDrafts::rebase(const std::string& displayID) {
    const auto draft = drafts_.find(displayID);
    if (draft == drafts_.end()) return;
    if (!hasDraft(displayID)) {
        drafts_.erase(draft);
    } else {
        draft->second.base = saved(displayID);
    }
}

WallpaperDrafts::Change WallpaperDrafts::change(const std::vector<std::string>& displayIDs) const {
    std::vector<Draft> drafts;
    for (const std::string& id : displayIDs) {
        if (const auto draft = drafts_.find(id); draft != drafts_.end()) drafts.push_back(draft->second);
    }
    auto passedOver = std::make_shared<DisplayIDs>();
    // It may be made more than once, each time on other settings.
    return {[drafts = std::move(drafts), passedOver](WallpaperSettings& settings) {
                passedOver->clear();
                for (const Draft& draft : drafts) {
                    if (!put(draft, settings)) passedOver->insert(draft.wanted.displayID);
                }
            },
            passedOver};
}

bool WallpaperDrafts::put(const Draft& draft, WallpaperSettings& settings) {
    const std::string& id = draft.wanted.displayID;
    const DisplayWallpaperSettings* present = findEntry(settings.displays, id);
    if (differ(present ? present->mode : WallpaperMode{}, draft.base.mode)) return false;
    settings.ensureEntries(std::vector<std::string>{id});
    DisplayWallpaperSettings& entry = *findEntry(settings.displays, id);
    entry.mode = withMemoryOf(draft.wanted.mode, entry.mode);
    for (const auto& [kind, mode] : draft.wanted.savedModes) {
        const auto before = draft.base.savedModes.find(kind);
        // One that the draft left alone may have become another in the settings.
        if (before == draft.base.savedModes.end() || before->second != mode) entry.savedModes[kind] = mode;
    }
    return true;
}

}  // namespace quillmar
