#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <optional>
#include <random>
#include <vector>

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/OfflineBackup.h"
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
#include "linux/glib/ClockJumps.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/JournalSystemLog.h"
#include "linux/glib/NetworkReturn.h"
#include "linux/glib/PreferredLanguages.h"
#include "linux/glib/SystemWallClock.h"
#include "linux/glib/UnixSignals.h"
#include "linux/gtk/GtkScreens.h"
#include "linux/gtk/GtkSession.h"
#include "linux/x11/OutputMemory.h"
#include "linux/picture/LinuxPictureEncoding.h"
#include "linux/render/ProcessPictureRendering.h"
#include "linux/soup/SoupHTTPSession.h"
#include "ui/GtkAlerts.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

Environment processEnvironment() {
    Environment environment;
    for (const char* const* entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string_view::npos)
            environment.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return environment;
}

/// The bundle keys lie beside the program where it was built, and in its data folder where it is installed.
BundleInfo loadBundleInfo(const Environment& environment) {
    if (const auto named = environment.find("QUILLMAR_INFO");
        named != environment.end() && !named->second.empty()) {
        return BundleInfo::load(named->second);
    }
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    const fs::path beside = folder / "Info.json";
    return BundleInfo::load(fs::exists(beside) ? beside : folder / "../share/quillmar/Info.json");
}

std::unique_ptr<ApplicationInstanceLock> takeInstanceLock(const BundleInfo& bundle,
                                                          const Environment& environment) {
    try {
        return ApplicationInstanceLock::take(temporaryDirectory(environment),
                                             bundle.identifier().value_or("Quillmar"));
    } catch (const std::exception& error) {
        std::cerr << "quillmar: " << error.what() << '\n';
        return nullptr;
    }
}

std::size_t randomIndex(std::size_t count) {
    thread_local std::mt19937_64 engine{std::random_device{}()};
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(engine);
}

/// The process's signals and the session's end are the same wish. A clock that leaps wakes up too: what is
/// due by it is due now.
class AllSystemEvents final : public SystemEventsObserving {
public:
    explicit AllSystemEvents(MainLoop& loop) : sessionEnd_(loop) {}
    void setQuitHandler(std::function<void(SystemQuitReason)> handler) override {
        signals_.setQuitHandler(handler);
        sessionEnd_.setQuitHandler(std::move(handler));
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

/// To one picture service: it is somebody else's machine.
constexpr int maximumConnectionsPerHost = 3;

/// The adapters of this desktop around the application. What the threads use is made before them, so that it
/// outlives their last job.
class LinuxApplication {
public:
    LinuxApplication(const BundleInfo& bundle, const Environment& environment)
        : bundle_(bundle),
          environment_(environment),
          supportFolder_(applicationSupportDirectoryOrNowhere(environment)) {}

    int run() {
        AppDelegate delegate(platform(), takeInstanceLock(bundle_, environment_));
        delegate.applicationWillFinishLaunching();
        delegate.applicationDidFinishLaunching();
        loop_.run();
        return process_.status();
    }

private:
    Ports platform() {
        return {.loop = loop_,
                .clock = clock_,
                .backgroundPool = pool_,
                .bundle = bundle_,
                .environment = environment_,
                .randomIndex = randomIndex,
                .preferredLanguages = preferredLanguages(),
                .process = process_,
                .systemEvents = systemEvents_,
                .runningInstances = instances_,
                .control = controlChannel_,
                .usageReporting = usageReporting_,
                .alerts = alerts_,
                .screens = screens_,
                .desktop = desktopPicture_,
                .pictureRendering = rendering_,
                .pictureEncoding = encoding_,
                .notificationCenter = notifications_,
                .webSession = webSession_,
                .settingsWindow = nullptr,
                .flushLog = [this] { return pipeline_.flush(); }};
    }
    std::optional<Url> reportEndpoint() const {
        const auto text = bundle_.value("QuillmarErrorReportEndpoint");
        return text ? Url::parse(*text) : std::nullopt;
    }

    const BundleInfo& bundle_;
    const Environment& environment_;
    fs::path supportFolder_;
    GlibMainLoop loop_;
    SystemWallClock clock_;
    Scrubber scrubber_{personalDirectories(environ)};
    LinuxPictureEncoding encoding_;
    ThreadPool pool_{4};
    ProcessPictureRendering rendering_{pool_, ProcessPictureRendering::installedProgram()};
    SerialExecutor logFiles_{pool_};
    SoupHTTPSession reportSession_{loop_, 1, &isPublicAddress};
    SoupHTTPSession webSession_{loop_, maximumConnectionsPerHost, &isPublicAddress};
    HTTPErrorReporter reporter_{
        loop_, clock_, logFiles_, reportSession_, scrubber_, supportFolder_ / "ErrorQueue", reportEndpoint()};
    DiagnosticPipeline pipeline_{loop_, clock_, logFiles_, reporter_, supportFolder_ / "Logs"};
    JournalSystemLog systemLog_{bundle_.identifier().value_or("Quillmar")};
    DiagnosticLog log_{scrubber_,
                       clock_,
                       systemLog_,
                       pipeline_,
                       {bundle_.semanticVersion("unknown"), operatingSystemVersionText()}};
    LogInstallation logInstallation_{log_};
    LoopControl process_{loop_};
    DBusControl controlChannel_{loop_};
    AllSystemEvents systemEvents_{loop_};
    DBusRunningInstances instances_;
    NoUsageReporting usageReporting_;
    DBusNotifications notifications_;
    GtkAlerts alerts_;
    GtkScreens screens_{outputIdentitiesFile(environment_), pool_};
    LinuxDesktopPicture desktopPicture_{pool_, encoding_, environment_,
                                        supportFolder_ / "Cache/GeneratedWallpapers"};
};

int listDisplays(bool asJson) {
    ThreadPool pool(1);
    const GtkScreens screens(outputIdentitiesFile(processEnvironment()), pool);
    const auto displays = DisplayService(screens).displays();
    if (asJson) {
        std::cout << displaysAsJson(displays);
    } else {
        printDisplays(std::cout, displays);
    }
    return 0;
}

/// Runs the loop until the task has its value.
template <class T>
T runToEnd(GlibMainLoop& loop, Task<T> task) {
    std::optional<T> value;
    std::exception_ptr failure;
    TaskScope scope(loop);
    scope.spawn(
        [](GlibMainLoop* until, Task<T> work, std::optional<T>* to, std::exception_ptr* error) -> Task<void> {
            try {
                to->emplace(co_await std::move(work));
            } catch (...) {
                *error = std::current_exception();
            }
            until->quit();
        }(&loop, std::move(task), &value, &failure));
    loop.run();
    if (failure) std::rethrow_exception(failure);
    return *std::move(value);
}

ControlReply runWithoutProgram(GlibMainLoop& loop, const BundleInfo& bundle, const Environment& environment,
                               ControlCall call) {
    if (call.arguments.front() != "backup") return {.status = 1, .errors = "Quillmar is not running.\n"};
    const auto lock = takeInstanceLock(bundle, environment);
    if (!lock) return {.status = 1, .errors = "Quillmar is running but cannot be reached.\n"};
    const SystemWallClock clock;
    ThreadPool pool(1);
    OfflineBackup backup(loop, clock, pool, bundle, environment);
    return runToEnd(loop, backup.run(std::move(call)));
}

int askRunningProgram(const BundleInfo& bundle, const Environment& environment,
                      std::vector<std::string> arguments) {
    ControlCall call{std::move(arguments), fs::current_path()};
    std::optional<ControlReply> reply;
    {
        GlibMainLoop loop;
        DBusControl channel(loop);
        reply = runToEnd(loop, channel.call(call));
    }
    if (!reply) {
        GlibMainLoop loop;
        reply = runWithoutProgram(loop, bundle, environment, std::move(call));
    }
    std::cout << reply->output;
    std::cerr << reply->errors;
    return reply->status;
}

int runCommand(const CommandLine& line) {
    const Environment environment = processEnvironment();
    const BundleInfo bundle = loadBundleInfo(environment);
    switch (line.command) {
        case CommandLine::Command::refuse:
            std::cerr << "quillmar: " << line.complaint << " See \"quillmar --help\".\n";
            return usageStatus;
        case CommandLine::Command::showVersion:
            std::cout << "Quillmar " << bundle.semanticVersion("unknown") << '\n';
            return 0;
        case CommandLine::Command::showHelp: printHelp(std::cout); return 0;
        case CommandLine::Command::listDisplays: {
            const GtkSession session;
            return listDisplays(line.asJson);
        }
        case CommandLine::Command::askRunningProgram:
            return askRunningProgram(bundle, environment, line.arguments);
        case CommandLine::Command::run: break;
    }
    const GtkSession session;
    return LinuxApplication(bundle, environment).run();
}

}  // namespace
}  // namespace quillmar

int main(int argc, char** argv) {
    try {
        const std::vector<std::string_view> arguments(argv + 1, argv + argc);
        return quillmar::runCommand(quillmar::CommandLine::parse(arguments));
    } catch (const std::exception& error) {
        std::cerr << "quillmar: " << error.what() << '\n';
        return 1;
    }
}
