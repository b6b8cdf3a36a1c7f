#include "commandline/Help.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <span>

namespace quillmar {
namespace {

constexpr std::size_t labelWidth = 30;
constexpr std::size_t lineWidth = 92;

/// How many columns a text takes: one for each character that is written alone.
std::size_t columnsOf(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string wrapped(std::string_view text, std::size_t indent, std::size_t column) {
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        if (column > indent && column + 1 + columnsOf(word) > lineWidth) {
            result += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!result.empty()) {
            result += ' ';
            ++column;
        }
        result += word;
        column += columnsOf(word);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result + "\n";
}

/// A label with its text beside it, or below it where the label is long.
std::string entry(const std::string& label, const std::string& text) {
    std::string line = "  " + label;
    if (text.empty()) return line + "\n";
    const std::size_t width = columnsOf(line);
    line +=
        width + 2 > labelWidth ? "\n" + std::string(labelWidth, ' ') : std::string(labelWidth - width, ' ');
    return line + wrapped(text, labelWidth, labelWidth);
}

std::string sentence(std::string text) {
    if (text.empty()) return text;
    text.front() = text.front() >= 'a' && text.front() <= 'z' ? static_cast<char>(text.front() - 'a' + 'A')
                                                              : text.front();
    return text.ends_with('.') ? text : text + ".";
}

std::string overview(const std::string& group, GeneralLanguage language) {
    std::string text;
    for (const CommandRow& row : commands()) {
        if (group.empty() || row.words.starts_with(group + " "))
            text += entry(usageOf(row), localized(row.summary, language));
    }
    return text;
}

std::string detailsOf(const CommandRow& row, const std::string& parent, GeneralLanguage language) {
    std::string text = localized("Usage: %@"_key, language, {"quillmar " + parent + usageOf(row)}) + "\n\n" +
                       wrapped(sentence(localized(row.summary, language)), 0, 0);
    if (row.details) text += wrapped(localized(*row.details, language), 0, 0);
    if (row.takesKinds) {
        text += "\n" + localized("KIND is one of:"_key, language) + "\n";
        for (const CommandRow& kind : wallpaperKinds())
            text += entry(usageOf(kind), localized(kind.summary, language));
        const std::string help = "quillmar help " + row.words + " image";
        text += "\n" + localized("Each has a help of its own, such as \"%@\"."_key, language, {help}) + "\n";
    }
    if (row.options.empty()) return text;
    text += "\n" + localized("Options:"_key, language) + "\n";
    for (const OptionRow& option : row.options) {
        if (option.isHidden) continue;
        text += entry(usageOf(option), option.text ? localized(*option.text, language) : std::string());
    }
    return text;
}

std::string wholeHelp(GeneralLanguage language) {
    return localized("Usage: %@"_key, language, {"quillmar [COMMAND]"}) + "\n\n" +
           wrapped(localized("Without a command Quillmar starts and gives every display its own desktop. A "
                             "second start brings the running one to the front."_key,
                             language),
                   0, 0) +
           "\n" + localized("Commands:"_key, language) + "\n" + overview({}, language) +
           entry("-V, --version", localized("print the version"_key, language)) +
           entry("-h, --help", localized("print this help; behind a command, the help on it"_key, language)) +
           "\n" +
           localized(
               "Settings lie in $XDG_DATA_HOME/Quillmar/settings.json, by default\n"
               "~/.local/share/Quillmar/settings.json."_key,
               language) +
           "\n";
}

}  // namespace

std::string usageOf(const OptionRow& row) {
    if (row.value.empty()) return "--" + row.name;
    if (row.value == "WORD") return fmt::format("--{} {}", row.name, fmt::join(row.choices, "|"));
    if (!row.choices.empty()) return fmt::format("--{} {},...", row.name, fmt::join(row.choices, ","));
    return "--" + row.name + " " + row.value;
}

std::string usageOf(const CommandRow& row) {
    std::string text = row.words;
    for (const OperandRow& operand : row.operands)
        text += operand.isOptional ? fmt::format(" [{}]", operand.name) : fmt::format(" {}", operand.name);
    if (row.takesKinds) text += "...";
    if (row.options.size() == 1) {
        const OptionRow& only = row.options.front();
        text += fmt::format(" [--{}{}]", only.name, only.value.empty() ? "" : " " + only.value);
    }
    if (row.options.size() > 1)
        text += row.operands.empty() && row.words.contains(' ') ? " OPTION..." : " [OPTION...]";
    return text;
}

std::string helpText(const std::string& words, GeneralLanguage language) {
    if (words.empty()) return wholeHelp(language);
    constexpr std::string_view setting = "wallpaper set ";
    if (words.starts_with(setting)) {
        const CommandRow* kind = findCommand(wallpaperKinds(), words.substr(setting.size()));
        return detailsOf(*kind, "wallpaper set DISPLAY|all ", language);
    }
    const CommandRow* row = findCommand(commands(), words);
    const std::string verbs = overview(words, language);
    if (!row) return localized("Commands:"_key, language) + "\n" + verbs;
    if (verbs.empty()) return detailsOf(*row, {}, language);
    return detailsOf(*row, {}, language) + "\n" + localized("Commands:"_key, language) + "\n" + verbs;
}

}  // namespace quillmar
