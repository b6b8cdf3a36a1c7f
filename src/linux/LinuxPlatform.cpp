#include "linux/LinuxPlatform.h"

#include <unistd.h>

#include <optional>
#include <random>
#include <thread>

#include "async/ThreadPool.h"
#include "base/PublicAddress.h"
#include "diagnostics/DiagnosticLog.h"
#include "diagnostics/DiagnosticPipeline.h"
#include "diagnostics/HTTPErrorReporter.h"
#include "diagnostics/OperatingSystemVersion.h"
#include "linux/dbus/DBusControl.h"
#include "linux/dbus/DBusNotifications.h"
#include "linux/dbus/DBusRunningInstances.h"
#include "linux/dbus/DBusSessionEnd.h"
#include "linux/desktop/LinuxDesktopPicture.h"
#include "linux/glib/AutostartEntry.h"
#include "linux/glib/ClockJumps.h"
#include "linux/glib/GioAddresses.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/InotifyFileWatch.h"
#include "linux/glib/JournalSystemLog.h"
#include "linux/glib/LoopProbe.h"
#include "linux/glib/NetworkReturn.h"
#include "linux/glib/PreferredLanguages.h"
#include "linux/glib/SystemWallClock.h"
#include "linux/glib/UnixSignals.h"
#include "linux/gtk/GtkScreens.h"
#include "linux/picture/LinuxPictureEncoding.h"
#include "linux/render/ProcessPictureRendering.h"
#include "linux/session/SessionStart.h"
#include "linux/soup/SoupHTTPSession.h"
#include "linux/tray/TrayStatusIcon.h"
#include "linux/x11/OutputMemory.h"
#include "linux/xsmp/XsmpSessionEnd.h"
#include "storage/InstalledProgram.h"

namespace quillmar {
namespace {

std::size_t randomIndex(std::size_t count) {
    thread_local std::mt19937_64 engine{std::random_device{}()};
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine);
}

/// The process's signals and the session's end are the same wish. A clock that leaps wakes up too: what is
/// due by it is due now.
class AllSystemEvents final : public SystemEventsObserving {
public:
    AllSystemEvents(MainLoop& loop, Executor& background)
        : sessionEnd_(loop), xsmpSessionEnd_(loop, background) {}
    void setQuitHandler(std::function<void(SystemQuitReason)> handler) override {
        signals_.setQuitHandler(handler);
        sessionEnd_.setQuitHandler(handler);
        xsmpSessionEnd_.setQuitHandler(std::move(handler));
    }
    void setReloadHandler(std::function<void()> handler) override {
        signals_.setReloadHandler(std::move(handler));
    }
    void setWakeHandler(std::function<void()> handler) override {
        clockJumps_.reset();
        if (handler) clockJumps_.emplace(std::move(handler));
    }

    void setNetworkHandler(std::function<void()> handler) override {
        networkReturn_.reset();
        if (handler) networkReturn_.emplace(std::move(handler));
    }

private:
    UnixSignals signals_;
    DBusSessionEnd sessionEnd_;
    XsmpSessionEnd xsmpSessionEnd_;
    std::optional<ClockJumps> clockJumps_;
    std::optional<NetworkReturn> networkReturn_;
};

class LoopControl final : public ApplicationControl {
public:
    explicit LoopControl(GlibMainLoop& loop) : loop_(loop) {}
    void exit(int status) override {
        status_ = status;
        loop_.quit();
    }
    int status() const { return status_; }

private:
    GlibMainLoop& loop_;
    int status_ = 0;
};

constexpr std::chrono::milliseconds longestTeardown{500};

/// To one picture service: it is somebody else's machine.
constexpr int maximumConnectionsPerHost = 3;

std::optional<Url> reportEndpoint(const BundleInfo& bundle) {
    const auto text = bundle.value("QuillmarErrorReportEndpoint");
    return text ? Url::parse(*text) : std::nullopt;
}

}  // namespace

/// What the threads use is made before them, so that it outlives their last job.
struct LinuxPlatform::Adapters {
    Adapters(const BundleInfo& bundleInfo, const Environment& variables, Views shown)
        : bundle(bundleInfo), environment(variables), views(shown) {}

    const BundleInfo& bundle;
    const Environment& environment;
    Views views;
    std::filesystem::path supportFolder = applicationSupportDirectoryOrNowhere(environment);
    std::unique_ptr<LoopProbe> loopProbe = LoopProbe::wanted();
    GlibMainLoop loop;
    SystemWallClock clock;
    Scrubber scrubber{personalDirectories(environ)};
    ThreadPool pool{4};
    SerialExecutor logFiles{pool};
    SerialExecutor stateFiles{pool};
    SoupHTTPSession reportSession{loop, 1, &isPublicAddress};
    SoupHTTPSession webSession{loop, maximumConnectionsPerHost, &isPublicAddress};
    HTTPErrorReporter reporter{
        loop, clock, logFiles, reportSession, scrubber, supportFolder / "ErrorQueue", reportEndpoint(bundle)};
    DiagnosticPipeline pipeline{loop, clock, logFiles, reporter, supportFolder / "Logs"};
    JournalSystemLog systemLog{bundle.identifier().value_or("Quillmar")};
    DiagnosticLog log{scrubber,
                      clock,
                      systemLog,
                      pipeline,
                      {bundle.semanticVersion("unknown"), operatingSystemVersionText()}};
    LogInstallation logInstallation{log};
    LoopControl process{loop};
    DBusControl controlChannel{loop};
    AllSystemEvents systemEvents{loop, pool};
    InotifyFileWatch settingsWatch;
    DBusRunningInstances instances;
    NoUsageReporting usageReporting;
    DBusNotifications notifications;
    GioAddresses addresses;
    AutostartEntry loginItem{stateFiles, environment, calledProgram()};
    LinuxPictureEncoding encoding;
    ProcessPictureRendering rendering{pool, ProcessPictureRendering::installedProgram()};
    TrayStatusIcon statusIcon{loop, iconThemesFolder()};
    GtkScreens screens{outputIdentitiesFile(environment), stateFiles};
    LinuxDesktopPicture desktopPicture{pool, encoding, environment,
                                       supportFolder / "Cache/GeneratedWallpapers"};
};

LinuxPlatform::LinuxPlatform(const BundleInfo& bundle, const Environment& environment, Views views)
    : adapters_(std::make_unique<Adapters>(bundle, environment, views)) {}
LinuxPlatform::~LinuxPlatform() = default;

Ports LinuxPlatform::ports() {
    Adapters& own = *adapters_;
    return {.loop = own.loop,
            .clock = own.clock,
            .backgroundPool = own.pool,
            .bundle = own.bundle,
            .environment = own.environment,
            .randomIndex = randomIndex,
            .preferredLanguages = preferredLanguages(),
            .process = own.process,
            .systemEvents = own.systemEvents,
            .settingsWatch = own.settingsWatch,
            .runningInstances = own.instances,
            .control = own.controlChannel,
            .usageReporting = own.usageReporting,
            .alerts = own.views.alerts,
            .screens = own.screens,
            .desktop = own.desktopPicture,
            .pictureRendering = own.rendering,
            .pictureEncoding = own.encoding,
            .notificationCenter = own.notifications,
            .webSession = own.webSession,
            .addresses = own.addresses,
            .statusIcon = own.statusIcon,
            .loginItem = own.loginItem,
            .files = own.views.files,
            .clipboard = own.views.clipboard,
            .settingsWindow = own.views.settingsWindow,
            .welcomeWindow = own.views.welcomeWindow,
            .changelogWindow = own.views.changelogWindow,
            .isStartedByPerson = !isStartedBySession(own.environment, ::getpid()),
            .flushLog = [&own] { return own.pipeline.flush(); }};
}

int LinuxPlatform::run() {
    adapters_->loop.run();
    const int status = adapters_->process.status();
    // All is saved and said by now. A thread that waits for a server or a disk that does not answer must not
    // keep the process.
    std::thread([status] {
        std::this_thread::sleep_for(longestTeardown);
        ::_exit(status);
    }).detach();
    return status;
}

}  // namespace quillmar
