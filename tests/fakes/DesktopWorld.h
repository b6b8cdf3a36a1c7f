#pragma once
#include <fstream>

#include "desktop/DesktopPictures.h"
#include "fakes/FakeDesktopPicture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/FakeScreens.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {

/// Two screens and their desktop, with real files in a folder of the test's own.
struct DesktopWorld {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    TemporaryFolder folder;
    std::filesystem::path cache = folder.path() / "Cache/GeneratedWallpapers";
    FakeScreens screens;
    DisplayService displays{screens};
    FakeDesktopPicture desktop;
    FakePictureRendering rendering;
    InlineExecutor executor;
    HeldExecutor writing;  ///< of pictures, behind the showing
    CacheFileProtection cacheFiles;
    PictureWriter writer{loop, rendering, writing, cacheFiles};
    std::optional<DesktopPictures> pictures;
    TaskScope tasks{loop};

    DesktopWorld() {
        writing.runsAtOnce = true;
        screens.plugIn(1, {0, 0, 1920, 1080});
        screens.plugIn(2, {1920, 0, 1280, 1024});
        restart();
    }
    /// As the next process would find it.
    void restart() {
        pictures.emplace(DesktopPictures::Services{.loop = loop,
                                                   .displays = displays,
                                                   .screens = screens,
                                                   .choosing = desktop,
                                                   .rendering = rendering,
                                                   .encoding = rendering,
                                                   .writer = writer,
                                                   .cacheFiles = cacheFiles,
                                                   .executor = executor,
                                                   .folder = folder.path() / "Desktop"});
    }
    static std::string id(std::uint32_t screen) { return FakeScreens::displayID(screen); }
    std::filesystem::path put(const std::string& name) {
        const auto file = folder.path() / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "a picture";
        return file;
    }
    /// Runs the task as far as it goes.
    template <class T>
    std::string run(Task<T> task) {
        return outcomeOf(loop, tasks, std::move(task))->text;
    }
    /// The same; what it gives by then goes to `result`, when that is not null.
    template <class T>
    std::string run(Task<T> task, T* result) {
        const auto outcome = outcomeOf(loop, tasks, std::move(task));
        if (result && outcome->value) *result = *std::move(outcome->value);
        return outcome->text;
    }
    std::string shown(std::uint32_t screen) const {
        const auto found = desktop.shown.find(screen);
        return found == desktop.shown.end() ? "" : found->second.filename().string();
    }
};

}  // namespace quillmar
