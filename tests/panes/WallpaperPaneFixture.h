#pragma once
#include <gtest/gtest.h>

#include "fakes/FakeAlerts.h"
#include "fakes/FakeFileChooser.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/WallpaperProgram.h"
#include "imports/MediaImportRepository.h"
#include "panes/wallpaper/WallpaperPane.h"

namespace quillmar {

/// The Wallpaper pane of a program with two displays, and what is wished and seen there.
struct WallpaperPaneFixture : ::testing::Test, DesktopWorld {
    TemporaryFolder home;
    EventBus notifications;
    FakeSettingsStore store;
    std::optional<AppSettingsModel> model;
    std::optional<WallpaperProgram> wallpaper;
    FakeAlerts alerts;
    FakeFileChooser chooser;
    std::optional<MediaImportRepository> importing;
    std::optional<MediaImportCoordinator> imports;
    std::optional<WallpaperPane> pane;
    EventBus::Observation following;

    void SetUp() override {
        const auto before = put("before.jpg");
        desktop.shown = {{1, before}, {2, before}};
        begin();
    }
    void begin() {
        pane.reset();
        model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
        wallpaper.emplace(*this, notifications, *model);
        importing.emplace(MediaImportRepository::Services{.copying = executor,
                                                          .executor = executor,
                                                          .rendering = rendering,
                                                          .cacheFiles = cacheFiles,
                                                          .cacheRoot = folder.path() / "Cache"});
        imports.emplace(loop, notifications, *importing);
        pane.emplace(WallpaperPane::Services{.loop = loop,
                                             .settingsModel = *model,
                                             .coordinator = wallpaper->coordinator,
                                             .rotation = wallpaper->rotation,
                                             .pictures = wallpaper->memory,
                                             .displays = displays,
                                             .desktop = *pictures,
                                             .writer = writer,
                                             .renderer = wallpaper->renderer,
                                             .imports = *imports,
                                             .cacheFiles = cacheFiles,
                                             .files = executor},
                     alerts, chooser, [] {});
        following = notifications.observe<AppSettings>(
            appSettingsDidChange, [this](const AppSettings&) { pane->settingsDidChange(); });
        run(wallpaper->memory.load());
        pane->didAppear();
        loop.settle();
    }
    void wish(std::string row, decltype(SettingsIntent::value) value = {}) {
        pane->act({std::move(row), std::move(value)});
        loop.settle();
    }
    void choose(std::uint32_t screen) { wish("display", id(screen)); }
    SettingsRow row(const std::string& name) const {
        for (const SettingsGroup& group : pane->content().groups) {
            for (const SettingsRow& each : group.rows) {
                if (each.id == name) return each;
            }
        }
        return {.id = "none"};
    }
    bool isEnabled(const std::string& action) const {
        const auto actions = pane->content().actions;
        return std::ranges::find(actions, action, &SettingsPaneAction::id)->isEnabled;
    }
    DisplayWallpaperSettings saved(std::uint32_t screen) const {
        const auto* entry = findEntry(store.onDisk.wallpaper.displays, id(screen));
        return entry ? *entry : DisplayWallpaperSettings{};
    }
    SettingsArrangement::Display display(std::uint32_t screen) const {
        const auto arrangement = pane->content().arrangement;
        for (const auto* list : {&arrangement->connected, &arrangement->absent}) {
            for (const auto& each : *list) {
                if (each.id == id(screen)) return each;
            }
        }
        return {};
    }
    std::filesystem::path own(const std::string& name) const {
        std::ofstream(home.path() / name) << "a picture called " << name;
        return home.path() / name;
    }
    std::ptrdiff_t copies() const {
        std::error_code isMissing;
        const auto images = std::filesystem::directory_iterator(folder.path() / "Cache/Images", isMissing);
        return std::ranges::distance(images);
    }
    void isEditedElsewhere(std::uint32_t screen, const std::string& color) {
        model->update([&](AppSettings& document) {
            document.wallpaper.ensureEntries(std::vector<std::string>{id(screen)});
            findEntry(document.wallpaper.displays, id(screen))->mode = {
                SolidColorPresentationSettings{color}};
        });
        loop.advance(std::chrono::seconds(1));
    }
    std::string color(std::uint32_t screen) const {
        const DisplayWallpaperSettings entry = saved(screen);
        const auto* solid = std::get_if<SolidColorPresentationSettings>(&entry.mode.value);
        return solid ? solid->hexColor : "";
    }
};

}  // namespace quillmar
