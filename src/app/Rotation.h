#pragma once
#include "app/Lives.h"
#include "app/RestoreFollowing.h"
#include "wallpaper/WallpaperRotationCoordinator.h"

namespace quillmar {

/// Wallpapers that change by themselves, from the start to the end. A restore that ends after the program
/// began to quit begins nothing any more.
class Rotation final : public Life {
public:
    Rotation(WallpaperRotationCoordinator& coordinator, RestoreFollowing& restores)
        : coordinator_(coordinator), restores_(restores) {}
    Task<void> start() override {
        coordinator_.start();
        co_return;
    }
    Task<void> stop() override {
        coordinator_.stop();
        restores_.stop();
        co_return;
    }
    void resume() override { coordinator_.start(); }

private:
    WallpaperRotationCoordinator& coordinator_;
    RestoreFollowing& restores_;
};

}  // namespace quillmar
