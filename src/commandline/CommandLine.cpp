#include "commandline/CommandLine.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "commandline/SettingsArguments.h"
#include "commandline/WallpaperModeArguments.h"

namespace quillmar {
namespace {

using Words = std::span<const std::string>;

bool isOption(const std::string& word) { return word.size() > 1 && word.front() == '-'; }
bool isHelp(const std::string& word) { return word == "--help" || word == "-h"; }

/// The second words of a group of commands such as "backup".
std::vector<std::string> verbsOf(const std::string& group) {
    std::vector<std::string> verbs;
    for (const CommandRow& row : commands()) {
        if (row.words.starts_with(group + " ")) verbs.push_back(row.words.substr(group.size() + 1));
    }
    return verbs;
}

/// Takes the words that call a command off the front.
const CommandRow& takeCommand(Words& words) {
    const std::string first = words.front();
    const std::vector<std::string> verbs = verbsOf(first);
    const CommandRow* alone = findCommand(commands(), first);
    if (!alone && verbs.empty()) throw UsageError("There is no command \"%@\"."_key, {first});
    words = words.subspan(1);
    if (verbs.empty() || (alone && (words.empty() || isOption(words.front())))) return *alone;
    if (words.empty()) {
        throw UsageError("\"%@\" needs one of its commands: %@."_key,
                         {first, fmt::format("{}", fmt::join(verbs, ", "))})
            .under(first);
    }
    const CommandRow* row = findCommand(commands(), first + " " + words.front());
    if (!row) throw UsageError("\"%@\" has no command \"%@\"."_key, {first, words.front()}).under(first);
    words = words.subspan(1);
    return *row;
}

/// Sorts what stands behind a command.
class Sorting {
public:
    Sorting(CommandLine& line, Words words) : line_(line), words_(words) {}

    void run() {
        bool optionsEnded = false;
        while (!words_.empty()) {
            const std::string word = take();
            if (!optionsEnded && word == "--") {
                optionsEnded = true;
            } else if (!optionsEnded && isOption(word)) {
                option(word);
            } else {
                operand(word);
            }
        }
        const std::size_t given = line_.operands.size() + (line_.kind ? 1 : 0);
        for (std::size_t i = given; i < operands_.size(); ++i) {
            if (operands_[i].isOptional) continue;
            const std::string& caller = line_.kind ? line_.kind->words : line_.command->words;
            throw UsageError("\"%@\" needs %@."_key, {caller, operands_[i].what});
        }
    }

private:
    const CommandRow& row() const { return line_.kind ? *line_.kind : *line_.command; }
    std::string take() {
        std::string word = words_.front();
        words_ = words_.subspan(1);
        return word;
    }
    [[noreturn]] void refuse(const std::string& word) const {
        if (row().takesSecrets) throw UsageError("\"%@\" takes nothing but options."_key, {row().words});
        throw UsageError("\"%@\" does not take \"%@\"."_key, {row().words, word});
    }
    void option(const std::string& word) {
        const std::size_t end = std::min(word.find('='), word.size());
        const OptionRow* found =
            word.starts_with("--") ? row().option(std::string_view(word).substr(2, end - 2)) : nullptr;
        // What stands behind the sign may be a key.
        if (!found) throw UsageError("\"%@\" does not take \"%@\"."_key, {row().words, word.substr(0, end)});
        GivenOption given{found, std::nullopt};
        if (end < word.size()) given.text = word.substr(end + 1);
        if (given.text && found->value.empty() && !found->isTruth)
            throw UsageError("\"--%@\" takes no value."_key, {found->name});
        if (!given.text && !found->value.empty()) {
            if (words_.empty()) throw UsageError("\"--%@\" needs a value."_key, {word.substr(2)});
            given.text = take();
        }
        line_.options.push_back(std::move(given));
    }
    void operand(const std::string& word) {
        const bool isKind = line_.command->takesKinds && !line_.kind &&
                            line_.operands.size() + 1 == line_.command->operands.size();
        if (isKind) {
            line_.kind = findCommand(wallpaperKinds(), word == "color" ? "colour" : word);
            if (!line_.kind) throw UsageError("There is no kind of wallpaper \"%@\"."_key, {word});
            std::ranges::copy(line_.kind->operands, std::back_inserter(operands_));
            return;
        }
        const std::size_t given = line_.operands.size() + (line_.kind ? 1 : 0);
        if (given == operands_.size()) refuse(word);
        if (word.empty()) throw UsageError("\"%@\" needs %@."_key, {row().words, operands_[given].what});
        const auto& choices = operands_[given].choices;
        if (!choices.empty() && std::ranges::find(choices, word) == choices.end()) {
            throw UsageError("%@ is one of %@."_key, {std::string(operands_[given].name),
                                                      fmt::format("{}", fmt::join(choices, ", "))});
        }
        line_.operands.push_back(word);
    }

    CommandLine& line_;
    Words words_;
    std::vector<OperandRow> operands_ = line_.command->operands;
};

/// The words of the command that a help is wanted on. What is no command's word ends them: the rest of a line
/// need not be sound to be helped with.
std::string helpWordsAmong(Words words) {
    std::string found;
    for (const std::string& word : words) {
        const std::string longer = found.empty() ? word : found + " " + word;
        if (findCommand(commands(), longer) || !verbsOf(longer).empty())
            found = longer;
        else
            break;
    }
    if (found != "wallpaper set") return found;
    for (const std::string& word : words.subspan(2)) {
        if (findCommand(wallpaperKinds(), word)) return found + " " + word;
    }
    return found;
}

CommandLine helpOn(Words words) {
    CommandLine line{.wish = CommandLine::Wish::help, .helpOn = helpWordsAmong(words)};
    const std::string asked = fmt::format("{}", fmt::join(words, " "));
    if (asked != line.helpOn) throw UsageError("There is no command \"%@\"."_key, {asked});
    return line;
}

}  // namespace

CommandLine CommandLine::parse(std::span<const std::string> words) {
    CommandLine line;
    if (words.empty()) return line;
    const std::string& first = words.front();
    const Words options(words.begin(), std::ranges::find(words, "--"));
    if (std::ranges::any_of(options, isHelp)) {
        line.wish = Wish::help;
        line.helpOn = helpWordsAmong(words);
        if (line.helpOn.empty() && !isHelp(first))
            throw UsageError("There is no command \"%@\"."_key, {first});
        return line;
    }
    if (first == "--version" || first == "-V") {
        if (words.size() > 1) throw UsageError("\"%@\" does not take \"%@\"."_key, {first, words[1]});
        line.wish = Wish::version;
        return line;
    }
    if (first == "help") return quillmar::helpOn(words.subspan(1));
    line.wish = Wish::command;
    line.command = &takeCommand(words);
    try {
        Sorting(line, words).run();
    } catch (UsageError& error) {
        throw error.under(line.helpWords());
    }
    return line;
}

const GivenOption* CommandLine::option(std::string_view name) const {
    const auto found =
        std::ranges::find_if(options, [&](const GivenOption& given) { return given.row->name == name; });
    return found == options.end() ? nullptr : &*found;
}

std::string CommandLine::helpWords() const {
    if (!command) return {};
    return kind ? command->words + " " + kind->words : command->words;
}

namespace {

/// Files and saved keys are left to the running program: it alone knows what it may read and has.
void judgeMode(const WallpaperMode& mode) {
    using Case = WallpaperApplicationError::Case;
    const auto problem = mode.validationError([](const auto&) { return true; });
    if (!problem) return;
    constexpr std::array keys{Case::missingUnsplashAccessKey, Case::missingWallhavenNSFWAPIKey,
                              Case::missingSmithsonianAPIKey};
    if (std::ranges::find(keys, problem->errorCase()) == keys.end()) throw UsageError(*problem);
}

}  // namespace

void judge(const CommandLine& line) {
    try {
        if (line.kind) judgeMode(parseWallpaperMode(line, "/").mode);
        if (line.is("general set")) {
            GeneralSettings settings;
            applyGeneralOptions(line, settings);
        }
        if (line.is("update set")) {
            SoftwareUpdatePreferences preferences;
            applyUpdateOptions(line, preferences);
        }
        namedSections(line);
    } catch (UsageError& error) {
        throw error.under(line.helpWords());
    }
}

}  // namespace quillmar
