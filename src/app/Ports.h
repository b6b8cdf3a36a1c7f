#pragma once
#include <functional>
#include <string>
#include <vector>

#include "async/Executor.h"
#include "async/WallClock.h"
#include "base/BundleInfo.h"
#include "platform/AddressOpening.h"
#include "platform/AlertPresenting.h"
#include "platform/ApplicationControl.h"
#include "platform/Clipboard.h"
#include "platform/ControlChannel.h"
#include "platform/DesktopPicture.h"
#include "platform/FileChoosing.h"
#include "platform/FileWatching.h"
#include "platform/HTTPSession.h"
#include "platform/LoginItemRegistering.h"
#include "platform/PageWindow.h"
#include "platform/PictureRendering.h"
#include "platform/RemoteNotificationCenter.h"
#include "platform/RunningInstances.h"
#include "platform/Screens.h"
#include "platform/SettingsWindow.h"
#include "platform/StatusIcon.h"
#include "platform/SystemEvents.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Everything that the application needs of the system it runs on. Made by the composition root, outlives all
/// logic.
struct Ports {
    MainLoop& loop;
    const WallClock& clock;
    Executor& backgroundPool;
    const BundleInfo& bundle;
    const Environment& environment;
    std::function<std::size_t(std::size_t)> randomIndex;  ///< below its argument, each as likely; any thread
    std::vector<std::string> preferredLanguages;          ///< locale names, the most wanted first
    ApplicationControl& process;
    SystemEventsObserving& systemEvents;
    FileWatching& settingsWatch;  ///< for the settings file
    RunningInstances& runningInstances;
    ControlServing& control;
    UsageReporting& usageReporting;
    AlertPresenting& alerts;
    ScreensProviding& screens;
    DesktopChoosing& desktop;
    PictureRendering& pictureRendering;
    const PictureEncoding& pictureEncoding;
    RemoteNotificationCenter& notificationCenter;
    HTTPSession& webSession;  ///< for picture services
    AddressOpening& addresses;
    StatusIconShowing& statusIcon;
    LoginItemRegistering& loginItem;
    FileChoosing& files;
    ClipboardWriting& clipboard;
    SettingsWindowing& settingsWindow;
    WelcomeWindowing& welcomeWindow;
    ChangelogWindowing& changelogWindow;
    bool isStartedByPerson;                ///< rather than by the session
    std::function<Task<void>()> flushLog;  ///< waits until every log line is in its file
};

}  // namespace quillmar
