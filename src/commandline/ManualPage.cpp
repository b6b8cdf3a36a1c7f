#include "commandline/ManualPage.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>

#include "commandline/CommandTable.h"

namespace quillmar {
namespace {

constexpr GeneralLanguage language = GeneralLanguage::english;

/// A text as the page's source takes it.
std::string plain(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '\\')
            result += "\\e";
        else if (byte == '-')
            result += "\\-";
        else if (byte == '\n')
            result += ' ';
        else
            result += byte;
    }
    // A line that begins so would be a request of the page's language.
    return result.starts_with('.') || result.starts_with('\'') ? "\\&" + result : result;
}

std::string sentence(TextKey text) {
    std::string result = plain(localized(text, language));
    if (result.front() >= 'a' && result.front() <= 'z')
        result.front() = static_cast<char>(result.front() - 'a' + 'A');
    return result + (result.ends_with('.') ? "\n" : ".\n");
}

/// "Ar DISPLAY | Ar all"
std::string operandWords(const OperandRow& operand) {
    std::string words;
    std::string_view rest = operand.name;
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find('|'));
        if (!words.empty()) words += " | ";
        words += (word.front() >= 'a' && word.front() <= 'z' ? "Cm " : "Ar ") + plain(word);
        rest.remove_prefix(std::min(rest.size(), word.size() + 1));
    }
    return operand.isOptional ? " Oo " + words + " Oc" : " " + words;
}

std::string optionWords(const OptionRow& option) {
    std::string words = " Fl \\-" + plain(option.name);
    if (option.value == "WORD")
        return words + " Ar " + plain(fmt::format("{}", fmt::join(option.choices, "|")));
    return option.value.empty() ? words : words + " Ar " + plain(option.value);
}

/// "Cm wallpaper next Oo Ar DISPLAY | Cm all Oc"
std::string called(const CommandRow& row) {
    std::string words = "Cm " + plain(row.words);
    for (const OperandRow& operand : row.operands) words += operandWords(operand);
    if (row.options.size() == 1) words += " Oo" + optionWords(row.options.front()) + " Oc";
    if (row.options.size() > 1) words += " Op Ar OPTION ...";
    return words;
}

std::string item(const CommandRow& row) {
    std::string text = ".It " + called(row) + "\n" + sentence(row.summary);
    if (row.details) text += sentence(*row.details);
    if (row.options.size() < 2) return text;
    text += "The options are";
    for (const OptionRow& option : row.options) {
        if (!option.isHidden) text += "\n." + optionWords(option).substr(1) + " ,";
    }
    return text.substr(0, text.size() - 1) + ".\n";
}

std::string list(const std::vector<CommandRow>& rows) {
    std::string text = ".Bl -tag -width Ds\n";
    for (const CommandRow& row : rows) text += item(row);
    return text + ".El\n";
}

std::string synopsis() {
    std::string text;
    for (const CommandRow& row : commands()) text += ".Nm\n." + called(row) + "\n";
    return text;
}

}  // namespace

std::string manualPage(std::string_view frame) {
    std::string page(frame);
    const auto parts =
        std::to_array<std::pair<std::string_view, std::string>>({{"@SYNOPSIS@\n", synopsis()},
                                                                 {"@COMMANDS@\n", list(commands())},
                                                                 {"@KINDS@\n", list(wallpaperKinds())}});
    for (const auto& [mark, text] : parts) {
        const std::size_t at = page.find(mark);
        if (at != std::string::npos) page.replace(at, mark.size(), text);
    }
    return page;
}

}  // namespace quillmar
