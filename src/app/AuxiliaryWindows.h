#pragma once
#include "app/Ports.h"
#include "app/Subsystems.h"
#include "panes/ChangelogWindowController.h"
#include "panes/FirstRunWindowController.h"

namespace quillmar {

/// The windows beside Settings, and when they come. Main thread.
class AuxiliaryWindows {
public:
    AuxiliaryWindows(const Ports& ports, Subsystems& subsystems,
                     std::function<void(const std::string& section)> openSettings);

    /// Welcomes somebody who started the program for the first time, and waits until the welcome is
    /// dismissed. Where nobody did, because the session started it, none is thrown at them: it is kept for
    /// the next `activate`. Who asked for Settings has them already.
    Task<void> welcome();
    /// The program was started again. False when nothing came of it, so that Settings are what is wanted.
    bool activate();
    /// Settings are about to come, however asked for.
    void settingsAreOpening();
    /// Shows what is new, on this program's own account.
    void tellWhatIsNew();
    /// The same, where the user asked. Throws `AppLocalizableError` where there is no window to be had.
    void showChangelog() { changelog_.show(); }

private:
    bool showWelcome(std::function<void()> onDismiss);

    const Ports& ports_;
    FirstRunWindowController firstRun_;
    ChangelogWindowController changelog_;
    bool isWelcomeDue_ = false;
};

}  // namespace quillmar
