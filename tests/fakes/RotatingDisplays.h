#pragma once
#include <optional>
#include <vector>

#include "fakes/FakeDisplays.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/VirtualLoop.h"
#include "wallpaper/WallpaperRotationCoordinator.h"

namespace quillmar {

/// Displays with settings and an applier of the owner's choice, and the clock of their changes.
template <class Applier>
struct RotatingDisplays {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    FakeDisplays displays;
    Applier applier;
    WallpaperApplicationGate gate;
    HeldExecutor history;  ///< that never gets to the disk
    PictureMemory memory{history, "/dev/null", clock};
    std::optional<AppSettingsModel> model;
    std::optional<WallpaperCoordinator> wallpapers;
    std::optional<WallpaperRotationCoordinator> rotation;

    void starts(std::vector<DisplayWallpaperSettings> entries) {
        store.onDisk.wallpaper.displays = std::move(entries);
        model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
        wallpapers.emplace(loop, displays, applier, nullptr, *model, memory, gate, clock);
        rotation.emplace(loop, notifications, *model, *wallpapers, clock);
        loop.settle();
        rotation->start();
        loop.settle();
    }
};

}  // namespace quillmar
