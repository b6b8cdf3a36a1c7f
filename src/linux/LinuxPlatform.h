#pragma once
#include <memory>

#include "app/Ports.h"

namespace quillmar {

/// The adapters of this desktop, all of them, behind the ports that the application is given.
class LinuxPlatform {
public:
    /// The views; a session with the display server must be there. All outlive this.
    struct Views {
        AlertPresenting& alerts;
        FileChoosing& files;
        ClipboardWriting& clipboard;
        SettingsWindowing& settingsWindow;
        WelcomeWindowing& welcomeWindow;
        ChangelogWindowing& changelogWindow;
    };
    LinuxPlatform(const BundleInfo& bundle, const Environment& environment, Views views);
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;
    ~LinuxPlatform();

    Ports ports();
    /// Runs the main loop until the application ends it. The exit status.
    int run();

private:
    struct Adapters;
    std::unique_ptr<Adapters> adapters_;
};

}  // namespace quillmar
