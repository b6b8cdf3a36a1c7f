#include <unistd.h>

#include <filesystem>

#include "app/AppDelegate.h"
#include "base/StandardStreams.h"
#include "commandline/CommandLine.h"
#include "commandline/Output.h"
#include "control/DisplayList.h"
#include "control/OfflineBackup.h"
#include "linux/LinuxPlatform.h"
#include "linux/glib/AutostartEntry.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/PreferredLanguages.h"
#include "linux/glib/SystemWallClock.h"
#include "linux/gtk/GtkScreens.h"
#include "linux/gtk/GtkSession.h"
#include "linux/x11/OutputMemory.h"
#include "storage/InstalledProgram.h"
#include "ui/GtkAlerts.h"
#include "ui/GtkFileDialogs.h"
#include "ui/GtkTextClipboard.h"
#include "ui/PageWindowModule.h"
#include "ui/SettingsWindowModule.h"

namespace quillmar {
namespace {

std::unique_ptr<ApplicationInstanceLock> takeInstanceLock(const BundleInfo& bundle,
                                                          const Environment& environment) {
    return ApplicationInstanceLock::take(temporaryDirectory(environment),
                                         bundle.identifier().value_or("Quillmar"));
}

int runApplication(const BundleInfo& bundle, const Environment& environment, const CommandLine& line) {
    const GtkSession session;
    GtkAlerts alerts;
    GtkFileDialogs files;
    GtkTextClipboard clipboard;
    const std::filesystem::path views = companionProgram("quillmar-settings.so");
    SettingsWindowModule settingsWindow(views);
    PageWindowModule<WelcomePage> welcomeWindow(views, "quillmarMakeWelcomeWindow");
    PageWindowModule<ChangelogPage> changelogWindow(views, "quillmarMakeChangelogWindow");
    LinuxPlatform platform(bundle, environment,
                           {alerts, files, clipboard, settingsWindow, welcomeWindow, changelogWindow});
    AppDelegate delegate(platform.ports(), takeInstanceLock(bundle, environment));
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    if (line.is("settings")) delegate.openSettings(line.operands.empty() ? "" : line.operands.front());
    return platform.run();
}

ControlReply listDisplays(const CommandLine& line, const BundleInfo& bundle, const Environment& environment,
                          GeneralLanguage language) {
    const GtkSession session;
    ThreadPool pool(1);
    const GtkScreens screens(outputIdentitiesFile(environment), pool);
    const auto displays = DisplayService(screens).displays();
    return {.output = line.wantsJson() ? displaysAsJson(displays, bundle.semanticVersion("unknown"))
                                       : displaysAsText(displays, language)};
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

ControlReply backUpSettings(CommandLine line, const BundleInfo& bundle, const Environment& environment,
                            GeneralLanguage language) {
    const auto lock = takeInstanceLock(bundle, environment);
    if (!lock) {
        return {.status = 1,
                .errors = localized("Quillmar is starting or cannot be reached."_key, language) + "\n"};
    }
    GlibMainLoop loop;
    const SystemWallClock clock;
    ThreadPool pool(1);
    AutostartEntry session(pool, environment, calledProgram());
    OfflineBackup backup(loop, clock, pool, bundle, environment, session);
    return runToEnd(loop, backup.run(std::move(line), std::filesystem::current_path()));
}

/// The start, and what needs the settings or the screens where no program runs.
int carryOut(CommandLine line, GeneralLanguage language) {
    const Environment environment = processEnvironment();
    const BundleInfo bundle = loadBundleInfo(environment);
    if (line.wish == CommandLine::Wish::start || line.is("settings"))
        return runApplication(bundle, environment, line);
    if (line.is("displays")) return printReply(listDisplays(line, bundle, environment, language), language);
    if (line.command && line.command->words.starts_with("backup "))
        return printReply(backUpSettings(std::move(line), bundle, environment, language), language);
    throw UsageError("Commands are given to \"quillmar\", not to its agent."_key);
}

}  // namespace
}  // namespace quillmar

int main(int argc, char** argv) {
    using namespace quillmar;
    occupyStandardStreams();
    const auto language = preferredLanguage(preferredLanguages());
    const auto complain = [&](int status, const std::string& text) {
        return printReply({.status = status, .errors = "quillmar: " + text}, language);
    };
    try {
        const std::vector<std::string> words(argv + 1, argv + argc);
        CommandLine line = CommandLine::parse(words);
        judge(line);
        return carryOut(std::move(line), language);
    } catch (const UsageError& error) {
        return complain(usageStatus, error.complaint(language));
    } catch (const std::exception& error) {
        return complain(1, errorText(error, language) + "\n");
    }
}
