#pragma once
#include "fakes/DesktopWorld.h"
#include "fakes/FakeRemoteImageProvider.h"
#include "wallpaper/StaticPictures.h"
#include "wallpaper/WallpaperRotationCoordinator.h"
#include "wallpaper/WallpaperService.h"

namespace quillmar {

/// Everything between the settings and the desktop, with picture services that a test makes answer.
struct WallpaperProgram {
    WallpaperProgram(DesktopWorld& world, EventBus& notifications, AppSettingsModel& model)
        : remoteImages(world.cacheFiles),
          renderer({.cacheDirectory = world.cache,
                    .rendering = world.rendering,
                    .desktop = *world.pictures,
                    .executor = world.executor,
                    .cacheFiles = world.cacheFiles,
                    .clock = world.clock}),
          memory(world.executor, world.folder.path() / "state", world.clock),
          staticPictures({.desktop = *world.pictures,
                          .writer = world.writer,
                          .gate = gate,
                          .renderer = renderer,
                          .executor = world.executor,
                          .cacheFiles = world.cacheFiles,
                          .remoteImages = remoteImages,
                          .memory = memory,
                          .randomIndex = [](std::size_t) { return std::size_t{0}; }}),
          service(world.displays, *world.pictures, gate, {&staticPictures}),
          transactions(service),
          coordinator(world.loop, world.displays, service, &transactions, model, memory, gate, world.clock),
          rotation(world.loop, notifications, model, coordinator, world.clock) {}

    FakeRemoteImageProvider remoteImages;
    WallpaperApplicationGate gate;
    WallpaperRenderer renderer;
    PictureMemory memory;
    StaticPictures staticPictures;
    WallpaperService service;
    WallpaperSettingsTransactionService transactions;
    WallpaperCoordinator coordinator;
    WallpaperRotationCoordinator rotation;
};

}  // namespace quillmar
