#pragma once
#include <vector>

#include "app/Ports.h"
#include "fakes/FakeAddresses.h"
#include "fakes/FakeAlerts.h"
#include "fakes/FakeControlChannel.h"
#include "fakes/FakeDesktopPicture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeFileChooser.h"
#include "fakes/FakeHTTPSession.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeNotificationCenter.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/FakeScreens.h"
#include "fakes/FakeServices.h"
#include "fakes/FakeStatusIcon.h"
#include "fakes/FakeWindows.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {

class FakeProcess final : public ApplicationControl {
public:
    std::vector<int> exits;
    void exit(int status) override { exits.push_back(status); }
};

class FakeSystemEvents final : public SystemEventsObserving {
public:
    std::function<void(SystemQuitReason)> quit;
    std::function<void()> reload;
    std::function<void()> wake;
    std::function<void()> network;
    void setQuitHandler(std::function<void(SystemQuitReason)> handler) override { quit = std::move(handler); }
    void setReloadHandler(std::function<void()> handler) override { reload = std::move(handler); }
    void setWakeHandler(std::function<void()> handler) override { wake = std::move(handler); }
    void setNetworkHandler(std::function<void()> handler) override { network = std::move(handler); }
};

class FakeFileWatch final : public FileWatching {
public:
    std::function<void()> onChange;
    void watch(std::filesystem::path, std::function<void()> handler) override {
        onChange = std::move(handler);
    }
};

class FakeRunningInstances final : public RunningInstances {
public:
    int activations = 0;
    std::function<void()> onActivate;
    Task<bool> activateOther() override {
        ++activations;
        co_return true;
    }
    void publish(std::function<void()> callback) override { onActivate = std::move(callback); }
};

class FakeUsageReporting final : public UsageReporting {
public:
    std::vector<std::string> messages;
    void startCrashReporting(const std::string& releaseName) override { messages.push_back(releaseName); }
    void sendMessage(const std::string& message) override { messages.push_back(message); }
};

/// A whole machine in memory, but for its files: these are real, in a folder of the test's own.
struct FakePlatform {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    HeldExecutor background;
    TemporaryFolder folder;
    Environment environment{{"XDG_DATA_HOME", folder.path()}};
    BundleInfo bundle{bundleKeys()};
    FakeProcess process;
    FakeControlChannel control;
    FakeSystemEvents systemEvents;
    FakeFileWatch settingsWatch;
    FakeRunningInstances runningInstances;
    FakeUsageReporting usage;
    FakeAlerts alerts;
    FakeScreens screens;
    FakeDesktopPicture desktop;
    FakePictureRendering rendering;
    FakeHTTPSession web{loop};
    FakeNotificationCenter notificationCenter;
    FakeAddresses addresses;
    FakeStatusIcon statusIcon;
    FakeFileChooser files;
    FakeClipboard clipboard;
    FakeLoginItem loginItem;
    FakeSettingsWindow settingsWindow;
    FakePageWindow<WelcomePage> welcomeWindow;
    FakePageWindow<ChangelogPage> changelogWindow;
    bool isStartedByPerson = false;
    std::vector<std::string> preferredLanguages{"en_GB"};
    int flushes = 0;

    FakePlatform() { background.runsAtOnce = true; }
    Ports platform() {
        return {.loop = loop,
                .clock = clock,
                .backgroundPool = background,
                .bundle = bundle,
                .environment = environment,
                .randomIndex = [](std::size_t) { return std::size_t{0}; },
                .preferredLanguages = preferredLanguages,
                .process = process,
                .systemEvents = systemEvents,
                .settingsWatch = settingsWatch,
                .runningInstances = runningInstances,
                .control = control,
                .usageReporting = usage,
                .alerts = alerts,
                .screens = screens,
                .desktop = desktop,
                .pictureRendering = rendering,
                .pictureEncoding = rendering,
                .notificationCenter = notificationCenter,
                .webSession = web,
                .addresses = addresses,
                .statusIcon = statusIcon,
                .loginItem = loginItem,
                .files = files,
                .clipboard = clipboard,
                .settingsWindow = settingsWindow,
                .welcomeWindow = welcomeWindow,
                .changelogWindow = changelogWindow,
                .isStartedByPerson = isStartedByPerson,
                .flushLog = [this] { return flush(); }};
    }
    Task<void> flush() {
        ++flushes;
        co_return;
    }
    static std::map<std::string, std::string, std::less<>> bundleKeys() {
        auto keys = fakeServiceKeys();
        keys.insert({{"QuillmarSemanticVersion", "1.2.3"}, {"CFBundleName", "Quillmar"}});
        return keys;
    }
    std::filesystem::path settingsFile() const { return folder.path() / "Quillmar/settings.json"; }
};

}  // namespace quillmar
