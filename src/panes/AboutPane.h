#pragma once
#include <filesystem>
#include <functional>
#include <string>

#include "async/TaskScope.h"
#include "base/BundleInfo.h"
#include "display/DisplayInfo.h"
#include "panes/PaneModel.h"
#include "platform/AddressOpening.h"
#include "platform/Clipboard.h"
#include "settings/AppSettingsModel.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Which program this is, where more of it is to be found, and what a report of a fault needs.
class AboutPane final : public PaneModel {
public:
    struct Services {
        const BundleInfo& bundle;
        const Environment& environment;
        const DisplayProviding& displays;
        AppSettingsModel& settingsModel;
        AddressOpening& addresses;
        ClipboardWriting& clipboard;
        std::function<void()> openChangelog;
    };
    AboutPane(MainLoop& loop, Services services, std::function<void()> changed)
        : services_(std::move(services)), changed_(std::move(changed)), tasks_(loop) {}

    SettingsPane content() const override;
    void act(const SettingsIntent& intent) override;
    /// Version, system, desktop and displays, as English lines; neither paths nor settings.
    std::string diagnostics() const;
    /// The window has closed: what was said of the last action is past.
    void reset() { noted_.clear(); }

private:
    Task<void> open(std::string row, Url address);
    void note(std::string row, std::string text, bool isWarning);
    SettingsRow actionRow(std::string id, TextKey title, TextKey subtitle, TextKey button) const;
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    Services services_;
    std::function<void()> changed_;
    std::string noted_;  ///< the row that the note is on
    std::string note_;
    bool isWarning_ = false;
    TaskScope tasks_;
};

}  // namespace quillmar
