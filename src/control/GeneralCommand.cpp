#include "control/GeneralCommand.h"

#include <fmt/format.h>

#include "base/JsonRecord.h"
#include "commandline/SettingsArguments.h"
#include "control/SettingsReply.h"

namespace quillmar {
namespace {

/// Prints a line for each setting; one that does nothing on this desktop has none.
class Listing {
public:
    explicit Listing(std::string& text) : text_(text) {}
    Listing& required(std::string_view key, bool value) { return line(key, value ? "true" : "false"); }
    template <NamedEnum E>
    Listing& required(std::string_view key, E value) {
        return line(key, enumName(value));
    }
    Listing& required(std::string_view, const StatusIconClickBehavior& group) {
        StatusIconClickBehavior::describe(group, *this);
        return *this;
    }
    Listing& required(std::string_view, const MagicMouseMiddleClickSettings&) { return *this; }

private:
    Listing& line(std::string_view key, std::string_view value) {
        text_ += fmt::format("{}: {}\n", key, value);
        return *this;
    }
    std::string& text_;
};

/// The settings as a JSON document of their own.
struct GeneralDocument {
    std::string version;
    GeneralSettings settings;
    LoginItemRegistrationStatus loginItem;

    static void describe(auto& self, auto& io) {
        io.required("version", self.version);
        GeneralSettings::describe(self.settings, io);
        io.required("loginItem", self.loginItem);
    }
};

}  // namespace

std::string GeneralCommand::listed() const {
    std::string text;
    Listing listing(text);
    GeneralSettings::describe(services_.settingsModel.settings().general, listing);
    if (const auto difference = services_.loginItem.difference()) text += *difference + "\n";
    return text;
}

Task<ControlReply> GeneralCommand::run(CommandLine line) {
    co_await services_.settingsModel.loaded();
    co_await services_.loginItem.refresh();
    if (line.is("general set")) co_return co_await set(std::move(line));
    if (!line.wantsJson()) co_return ControlReply{.output = listed()};
    co_return ControlReply{
        .output = json::encode(GeneralDocument{services_.version, services_.settingsModel.settings().general,
                                               services_.loginItem.status()})};
}

Task<ControlReply> GeneralCommand::set(CommandLine line) {
    AppSettingsModel& model = services_.settingsModel;
    GeneralSettings wanted = model.settings().general;
    applyGeneralOptions(line, wanted);
    const bool namesLoginItem = line.option("launchAtLogin") != nullptr;
    {
        const auto hold = co_await model.transactionGate().acquire();
        const bool isSaved = co_await model.commit(
            [line = std::move(line)](AppSettings& document) { applyGeneralOptions(line, document.general); });
        if (!isSaved) co_return unsavedReply(model);
    }
    ControlReply reply;
    if (namesLoginItem && !co_await services_.loginItem.setEnabled(wanted.launchAtLogin)) {
        reply.status = 1;
        reply.errors = services_.loginItem.errorMessage().value_or("") + "\n";
    }
    reply.output = listed();
    if (wanted.showRemoteErrorNotifications && !co_await services_.mayNotify()) {
        reply.errors += localized(
                            "Nobody in this session shows notifications; failures stand in "
                            "\"quillmar status\"."_key,
                            wanted.language) +
                        "\n";
    }
    co_return reply;
}

}  // namespace quillmar
