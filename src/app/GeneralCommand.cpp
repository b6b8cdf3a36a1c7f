#include "app/GeneralCommand.h"

#include <fmt/format.h>

#include "app/SettingsReply.h"
#include "base/JsonRecord.h"

namespace quillmar {
namespace {

constexpr std::string_view usage =
    "Usage: quillmar general [--json]\n"
    "       quillmar general set OPTION...\n"
    "The options are called as the settings that \"quillmar general\" lists: --pauseRotations,\n"
    "--showRemoteErrorNotifications=false, --language portuguese ...\n";

/// Prints a line for each setting; a group of settings has none.
class Listing {
public:
    explicit Listing(std::string& text) : text_(text) {}
    Listing& required(std::string_view key, bool value) { return line(key, value ? "true" : "false"); }
    template <NamedEnum E>
    Listing& required(std::string_view key, E value) {
        return line(key, enumName(value));
    }
    Listing& required(std::string_view, const StatusIconClickBehavior&) { return *this; }

private:
    Listing& line(std::string_view key, std::string_view value) {
        text_ += fmt::format("{}: {}\n", key, value);
        return *this;
    }
    std::string& text_;
};

std::string listed(const GeneralSettings& settings) {
    std::string text;
    Listing listing(text);
    GeneralSettings::describe(settings, listing);
    return text;
}

/// Gives the options to the settings. Throws `UsageError`.
void applyOptions(const std::vector<std::string>& words, GeneralSettings& settings) {
    auto word = words.begin();
    const auto takeText = [&]() -> std::optional<std::string> {
        return word == words.end() ? std::nullopt : std::optional(*word++);
    };
    while (word != words.end()) {
        auto [name, text] = OptionWord::parse(*word++, "Only options stand behind \"set\".");
        RecordOption option(name, std::move(text), takeText);
        GeneralSettings::describe(settings, option);
        if (!option.isKnown()) throw UsageError(fmt::format("There is no general setting \"{}\".", name));
    }
}

}  // namespace

Task<ControlReply> GeneralCommand::run(ControlCall call) {
    co_await settingsModel_.loaded();
    std::vector<std::string> words(std::next(call.arguments.begin()), call.arguments.end());
    const GeneralSettings& settings = settingsModel_.settings().general;
    try {
        if (words.empty()) co_return ControlReply{.output = listed(settings)};
        if (words.size() == 1 && words.front() == "--json")
            co_return ControlReply{.output = json::encode(settings)};
        if (words.front() != "set")
            throw UsageError(fmt::format("\"general\" does not take \"{}\".", words.front()));
        words.erase(words.begin());
        co_return co_await set(std::move(words));
    } catch (const UsageError& error) {
        co_return ControlReply{.status = 2, .errors = std::string(error.what()) + "\n" + std::string(usage)};
    }
}

Task<ControlReply> GeneralCommand::set(std::vector<std::string> words) {
    if (words.empty()) throw UsageError("No setting was named.");
    GeneralSettings wanted = settingsModel_.settings().general;
    applyOptions(words, wanted);
    {
        const auto hold = co_await settingsModel_.transactionGate().acquire();
        const bool isSaved = co_await settingsModel_.commit(
            [words = std::move(words)](AppSettings& document) { applyOptions(words, document.general); });
        if (!isSaved) co_return unsavedReply(settingsModel_);
    }
    ControlReply reply{.output = listed(settingsModel_.settings().general)};
    if (!wanted.showRemoteErrorNotifications) co_return reply;
    co_await notifications_.ensureAuthorization();
    if (!notifications_.isAuthorized()) {
        reply.errors = "Nobody in this session shows notifications; failures stand in \"quillmar status\".\n";
    }
    co_return reply;
}

}  // namespace quillmar
