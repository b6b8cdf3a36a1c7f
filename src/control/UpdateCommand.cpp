#include "control/UpdateCommand.h"

#include <fmt/format.h>

#include "base/JsonRecord.h"
#include "commandline/SettingsArguments.h"

namespace quillmar {
namespace {

/// What a look has found, for scripts.
struct UpdateDocument {
    std::string version;
    bool looksForUpdates = false;  ///< not in every build
    SoftwareUpdatePreferences preferences;
    std::optional<AvailableUpdate> update;

    static void describe(auto& self, auto& io) {
        io.required("version", self.version)
            .required("looksForUpdates", self.looksForUpdates)
            .required("preferences", self.preferences)
            .optional("update", self.update);
    }
};

}  // namespace

std::string updateAsText(const AvailableUpdate& update, GeneralLanguage language) {
    std::string text = localized("Quillmar %@ is available"_key, language, {update.version}) + "\n";
    const auto line = [&](TextKey words, const std::string& value) {
        text += "    " + localized(words, language, {value}) + "\n";
    };
    if (update.page) line("page: %@"_key, update.page->string());
    if (update.file) line("verified file: %@"_key, *update.file);
    return text;
}

Task<ControlReply> UpdateCommand::run(CommandLine line) {
    co_await services_.settingsModel.loaded();
    if (line.is("update set")) co_return co_await set(std::move(line));
    SoftwareUpdateController& updates = services_.updates;
    std::optional<AvailableUpdate> found;
    if (updates.isEnabled()) found = co_await updates.checkForUpdates();
    const GeneralLanguage language = services_.settingsModel.settings().general.language;
    if (line.wantsJson()) {
        co_return ControlReply{.output = json::encode(UpdateDocument{services_.version, updates.isEnabled(),
                                                                     updates.preferences(), found})};
    }
    if (found) co_return ControlReply{.output = updateAsText(*found, language)};
    co_return ControlReply{
        .output =
            (updates.isEnabled()
                 ? localized("Quillmar %@ is up to date."_key, language, {services_.version})
                 : localized("This build of Quillmar does not look for newer versions."_key, language)) +
            "\n"};
}

Task<ControlReply> UpdateCommand::set(CommandLine line) {
    SoftwareUpdateController& updates = services_.updates;
    const GeneralLanguage language = services_.settingsModel.settings().general.language;
    if (!updates.isEnabled()) {
        co_return ControlReply{
            .status = 1,
            .errors =
                localized("This build of Quillmar does not look for newer versions."_key, language) + "\n"};
    }
    SoftwareUpdatePreferences preferences = updates.preferences();
    applyUpdateOptions(line, preferences);
    co_await updates.setPreferences(preferences);
    co_return ControlReply{
        .output = fmt::format("automaticallyChecksForUpdates: {}\nautomaticallyDownloadsUpdates: {}\n",
                              preferences.automaticallyChecksForUpdates,
                              preferences.automaticallyDownloadsUpdates)};
}

}  // namespace quillmar
