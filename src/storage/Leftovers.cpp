#include "storage/Leftovers.h"

#include <algorithm>

#include "base/AtomicFile.h"
#include "storage/PicturesFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

bool isAny(std::string_view) { return true; }

/// The document, and what was unsaved when it was edited.
bool isSettings(std::string_view name) { return name.starts_with("settings.json"); }

/// A favourite's name ends with eight digits, before its extensions.
bool isFavourite(std::string_view name) {
    constexpr std::size_t digits = 8;
    const std::string_view stem = name.substr(0, name.find('.', name.find_last_of(' ') + 1));
    return stem.size() >= digits && std::ranges::all_of(stem.substr(stem.size() - digits), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

}  // namespace

void removeLeftovers(const Environment& environment, WallTime before) {
    const fs::path support = applicationSupportDirectoryOrNowhere(environment);
    removeUnfinishedIn(support, before, isSettings);
    for (const char* folder : {"Desktop", "Desktop/Former", "ErrorQueue", "Cache/GeneratedWallpapers",
                               "Cache/Images", "Cache/LastShown"}) {
        removeUnfinishedIn(support / folder, before, isAny);
    }
    removeUnfinishedIn(applicationStateDirectory(environment), before, isAny);
    try {
        removeUnfinishedIn(favouritesFolder(environment), before, isFavourite);
    } catch (const ApplicationDirectoryError&) {
        // Where there is no folder for favourites, none was ever written.
    }
}

}  // namespace quillmar
