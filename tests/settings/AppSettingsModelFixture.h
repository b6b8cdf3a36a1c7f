#pragma once
#include <gmock/gmock.h>

#include <fstream>

#include "async/Sleep.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// Two independent choices of the document, so that a change of one shows what became of the other.
inline void pause(AppSettings& settings) { settings.general.pauseRotations = true; }
inline void colourful(AppSettings& settings) { settings.general.showColorfulStatusIcon = true; }
inline void launch(AppSettings& settings) { settings.general.launchAtLogin = false; }

inline std::string marks(const AppSettings& settings) {
    std::string text;
    if (settings.general.pauseRotations) text += 'p';
    if (settings.general.showColorfulStatusIcon) text += 'c';
    if (!settings.general.launchAtLogin) text += 'l';
    return text;
}

struct AppSettingsModelTest : ::testing::Test {
    VirtualLoop loop;
    EventBus notifications;
    FakeSettingsStore store;
    std::vector<std::string> posted;
    EventBus::Observation observation = notifications.observe<AppSettings>(
        appSettingsDidChange, [this](const AppSettings& s) { posted.push_back(marks(s)); });
    CacheFileProtection cacheFiles;
    std::optional<AppSettingsModel> model;
    TaskScope tasks{loop};

    void begin() { model.emplace(loop, notifications, store, AppSettings{}, cacheFiles); }
    void beginLoaded() {
        begin();
        loop.settle();
        posted.clear();
    }
    TaskHandle<bool> commits(SettingsUpdate mutation) {
        return tasks.start(model->commit(std::move(mutation)));
    }
    std::optional<bool> outcome(TaskHandle<bool> handle) {
        return outcomeOf(loop, tasks, handle.value())->value;
    }
    std::vector<std::string> savedMarks() const {
        std::vector<std::string> texts;
        for (const auto& save : store.saves) texts.push_back(marks(save));
        return texts;
    }
};

}  // namespace quillmar
