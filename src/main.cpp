#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <vector>

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "async/ThreadPool.h"
#include "diagnostics/DiagnosticLog.h"
#include "diagnostics/DiagnosticPipeline.h"
#include "diagnostics/HTTPErrorReporter.h"
#include "diagnostics/OperatingSystemVersion.h"
#include "linux/dbus/DBusRunningInstances.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/JournalSystemLog.h"
#include "linux/glib/PreferredLanguages.h"
#include "linux/glib/SystemWallClock.h"
#include "linux/glib/UnixSignals.h"
#include "linux/gtk/GtkScreens.h"
#include "linux/gtk/GtkSession.h"
#include "linux/picture/LinuxPictureRendering.h"
#include "linux/soup/SoupHTTPSession.h"
#include "linux/x11/X11DesktopPicture.h"
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
    if (const auto named = environment.find("QUILLMAR_INFO"); named != environment.end()) {
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
    } catch (const std::runtime_error& error) {
        std::cerr << "quillmar: " << error.what() << '\n';
        return nullptr;
    }
}

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

/// The adapters of this desktop around the application. What the threads use is made before them, so that it
/// outlives their last job.
class LinuxApplication {
public:
    LinuxApplication(const BundleInfo& bundle, const Environment& environment)
        : bundle_(bundle),
          environment_(environment),
          supportFolder_(applicationSupportDirectoryOrNowhere(environment)) {}

    int run() {
        AppDelegate delegate(platform(), takeInstanceLock(bundle_, environment_), [](const MainMenu&) {
            // No desktop that the program knows has a place for the menu of an agent without windows.
        });
        delegate.applicationWillFinishLaunching();
        delegate.applicationDidFinishLaunching();
        loop_.run();
        return control_.status();
    }

private:
    Platform platform() {
        return {.loop = loop_,
                .clock = clock_,
                .backgroundPool = pool_,
                .bundle = bundle_,
                .environment = environment_,
                .preferredLanguages = preferredLanguages(),
                .control = control_,
                .systemEvents = signals_,
                .runningInstances = instances_,
                .usageReporting = usageReporting_,
                .alerts = alerts_,
                .screens = screens_,
                .desktopPicture = desktopPicture_,
                .pictureRendering = rendering_,
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
    LinuxPictureRendering rendering_;
    ThreadPool pool_{4};
    SerialExecutor logFiles_{pool_};
    SoupHTTPSession reportSession_{loop_, 1};
    HTTPErrorReporter reporter_{
        loop_, clock_, logFiles_, reportSession_, scrubber_, supportFolder_ / "ErrorQueue", reportEndpoint()};
    DiagnosticPipeline pipeline_{loop_, clock_, logFiles_, reporter_, supportFolder_ / "Logs"};
    JournalSystemLog systemLog_;
    DiagnosticLog log_{scrubber_,
                       clock_,
                       systemLog_,
                       pipeline_,
                       {bundle_.semanticVersion("unknown"), operatingSystemVersionText()}};
    LogInstallation logInstallation_{log_};
    LoopControl control_{loop_};
    UnixSignals signals_;
    DBusRunningInstances instances_;
    NoUsageReporting usageReporting_;
    GtkAlerts alerts_;
    GtkScreens screens_;
    X11DesktopPicture desktopPicture_{supportFolder_ / "Cache/GeneratedWallpapers"};
};

int listDisplays(bool asJson) {
    const GtkScreens screens;
    const auto displays = DisplayService(screens).displays();
    if (asJson) {
        std::cout << displaysAsJson(displays);
    } else {
        printDisplays(std::cout, displays);
    }
    return 0;
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
