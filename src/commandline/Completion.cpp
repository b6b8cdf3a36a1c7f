#include "commandline/Completion.h"

#include <algorithm>
#include <optional>

namespace quillmar {
namespace {

/// The rest of a line behind its command.
struct Position {
    const CommandRow* command;
    const CommandRow* kind = nullptr;
    std::size_t operands = 0;
    std::vector<const OptionRow*> given;
    const OptionRow* waiting = nullptr;  ///< the option whose value comes next

    const CommandRow& row() const { return kind ? *kind : *command; }
    /// The operand that comes next; null when there is none.
    const OperandRow* next() const {
        if (!kind) return operands < command->operands.size() ? &command->operands[operands] : nullptr;
        const std::size_t own = operands - command->operands.size();
        return own < kind->operands.size() ? &kind->operands[own] : nullptr;
    }
    void pass(const std::string& word) {
        if (waiting) {
            waiting = nullptr;
        } else if (word.starts_with("--")) {
            const OptionRow* option = row().option(std::string_view(word).substr(2, word.find('=') - 2));
            if (!option) return;
            given.push_back(option);
            if (!option->value.empty() && !word.contains('=')) waiting = option;
        } else {
            const OperandRow* operand = next();
            if (operand && operand->word == WordKind::kind) kind = findCommand(wallpaperKinds(), word);
            ++operands;
        }
    }
};

/// What a list with commas can go on with.
std::vector<std::string> listChoices(const OptionRow& option, const std::string& current) {
    const std::size_t comma = current.rfind(',');
    const std::string before = comma == std::string::npos ? "" : current.substr(0, comma + 1);
    std::vector<std::string> words;
    for (const std::string_view choice : option.choices) {
        const std::string named = "," + std::string(choice) + ",";
        if (!("," + before).contains(named)) words.push_back(before + std::string(choice));
    }
    return words;
}

Completion valuesOf(const OptionRow& option, const std::string& current) {
    if (option.value == "LIST") return {.words = listChoices(option, current), .goesOn = true};
    Completion completion{.others = option.word};
    for (const std::string_view choice : option.choices) completion.words.emplace_back(choice);
    return completion;
}

Completion optionsAt(const Position& position) {
    Completion completion;
    for (const OptionRow& option : position.row().options) {
        const bool isNew = std::ranges::find(position.given, &option) == position.given.end();
        if (isNew && !option.isHidden) completion.words.push_back("--" + option.name);
    }
    return completion;
}

Completion operandsAt(const OperandRow& operand) {
    Completion completion{.others = operand.word};
    if (operand.word == WordKind::display) completion.words = {"all", "main"};
    for (const std::string_view choice : operand.choices) completion.words.emplace_back(choice);
    if (operand.word == WordKind::kind) {
        for (const CommandRow& kind : wallpaperKinds()) completion.words.push_back(kind.words);
    }
    return completion;
}

/// The values of "--name=", each with the name before it; nothing where the word is none such.
std::optional<Completion> optionWithValue(const CommandRow& row, const std::string& word) {
    const std::size_t end = word.find('=');
    if (!word.starts_with("--") || end == std::string::npos) return std::nullopt;
    const OptionRow* option = row.option(std::string_view(word).substr(2, end - 2));
    if (!option) return Completion{};
    Completion completion = valuesOf(*option, word.substr(end + 1));
    for (std::string& value : completion.words) value.insert(0, word, 0, end + 1);
    return completion;
}

/// How far a line has named a command.
struct Called {
    std::string words;  ///< with a blank behind each
    std::size_t count = 0;
};

Called calledBy(std::span<const std::string> words) {
    Called called;
    for (; called.count + 1 < words.size(); ++called.count) {
        const std::string longer = called.words + words[called.count] + " ";
        const bool isCommand = std::ranges::any_of(
            commands(), [&](const CommandRow& row) { return (row.words + " ").starts_with(longer); });
        if (!isCommand) break;
        called.words = longer;
    }
    return called;
}

/// The words that can follow in the name of a command.
std::vector<std::string> nextWords(const std::string& called) {
    std::vector<std::string> words;
    for (const CommandRow& row : commands()) {
        if (!row.words.starts_with(called)) continue;
        const std::string rest = row.words.substr(called.size());
        const std::string word = rest.substr(0, rest.find(' '));
        if (std::ranges::find(words, word) == words.end()) words.push_back(word);
    }
    return words;
}

Completion candidates(std::span<const std::string> words) {
    if (words.size() > 1 && words.front() == "help") {
        words = words.subspan(1);
        const Called called = calledBy(words);
        return {.words =
                    called.count + 1 == words.size() ? nextWords(called.words) : std::vector<std::string>{}};
    }
    const Called called = calledBy(words);
    if (called.count == 0) {
        Completion completion{.words = nextWords("")};
        for (const char* option : {"--version", "--help"}) completion.words.emplace_back(option);
        return words.size() == 1 ? completion : Completion{};
    }
    Completion completion;
    if (const auto* command =
            findCommand(commands(), std::string_view(called.words).substr(0, called.words.size() - 1))) {
        Position position{command};
        for (const std::string& word : words.subspan(called.count, words.size() - called.count - 1))
            position.pass(word);
        const OperandRow* operand = position.next();
        const auto given = optionWithValue(position.row(), words.back());
        completion = given                                       ? *given
                     : position.waiting                          ? valuesOf(*position.waiting, words.back())
                     : words.back().starts_with("-") || !operand ? optionsAt(position)
                                                                 : operandsAt(*operand);
    }
    if (called.count + 1 == words.size()) {
        std::ranges::move(nextWords(called.words), std::back_inserter(completion.words));
    }
    return completion;
}

}  // namespace

Completion complete(std::span<const std::string> words) {
    Completion completion = candidates(words);
    std::erase_if(completion.words, [&](const std::string& word) { return !word.starts_with(words.back()); });
    return completion;
}

std::string completionText(const Completion& completion) {
    std::string text = completion.others == WordKind::file      ? ":file\n"
                       : completion.others == WordKind::folder  ? ":folder\n"
                       : completion.others == WordKind::display ? ":display\n"
                                                                : ":words\n";
    if (completion.goesOn) text += ":nospace\n";
    for (const std::string& word : completion.words) text += word + "\n";
    return text;
}

}  // namespace quillmar
