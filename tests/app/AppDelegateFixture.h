#pragma once
#include <fstream>

#include "app/AppDelegate.h"
#include "fakes/FakePlatform.h"
#include "fakes/RecordedLog.h"
#include "fakes/TaskOutcome.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {

namespace fs = std::filesystem;

/// The whole program on fakes.
struct AppDelegateFixture : ::testing::Test {
    FakePlatform machine;
    RecordedLog log{machine.clock};
    std::unique_ptr<AppDelegate> delegate;

    std::unique_ptr<ApplicationInstanceLock> takeLock() {
        return ApplicationInstanceLock::take(machine.folder.path(), "com.quillmar.Quillmar");
    }
    void launch() {
        delegate = std::make_unique<AppDelegate>(machine.platform(), takeLock());
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        machine.loop.settle();
    }
    void putSettings(const AppSettings& settings) {
        fs::create_directories(machine.settingsFile().parent_path());
        std::ofstream(machine.settingsFile()) << encodeSettings(settings);
    }
    AppSettings twoColors() const {
        AppSettings settings = defaultSettings(machine.bundle);
        for (const auto& [number, color] : {std::pair{1u, "#112233"}, std::pair{2u, "#445566"}}) {
            DisplayWallpaperSettings entry;
            entry.displayID = FakeScreens::displayID(number);
            entry.mode.value = SolidColorPresentationSettings{color};
            settings.wallpaper.displays.push_back(entry);
        }
        return settings;
    }
    void plugInTwo() {
        machine.screens.plugIn(1, {0, 0, 1920, 1080});
        machine.screens.plugIn(2, {1920, 0, 1280, 1024});
    }
    /// A file in the cache that nobody has used for a year.
    fs::path putOldFile(const fs::path& name) {
        const fs::path file = machine.settingsFile().parent_path() / "Cache" / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "12345";
        fs::last_write_time(
            file, std::chrono::file_clock::from_sys(machine.clock.now() - std::chrono::hours(8766)));
        return file;
    }
    std::string shown(std::uint32_t screen) const {
        const auto found = machine.desktop.shown.find(screen);
        return found == machine.desktop.shown.end() ? "" : found->second.filename().string();
    }
    ControlReply answer(std::vector<std::string> words) {
        TaskScope tasks(machine.loop);
        return outcomeOf(machine.loop, tasks, machine.control.handler({std::move(words), "/", ""}))
            ->value.value();
    }
    void quitBySystem() {
        machine.systemEvents.quit(SystemQuitReason::terminated);
        machine.loop.settle();
    }
};

}  // namespace quillmar
