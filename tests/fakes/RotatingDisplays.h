#pragma once
#include <optional>
#include <vector>

#include "fakes/FakeDisplays.h"
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
    std::optional<AppSettingsModel> model;
    std::optional<WallpaperCoordinator> wallpapers;
    std::optional<WallpaperRotationCoordinator> rotation;

    void starts(std::vector<DisplayWallpaperSettings> entries) {
        store.onDisk.wallpaper.displays = std::move(entries);
        model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
        wallpapers.emplace(loop, displays, applier, nullptr, *model, gate, clock);
        rotation.emplace(loop, notifications, *model, *wallpapers, clock);
        loop.settle();
        rotation->start();
        loop.settle();
    }
};

}  // namespace quillmar
