#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Localization.h"

namespace quillmar {

/// What a word of the command line stands for, as far as a shell can offer something in its place.
enum class WordKind { text, file, folder, display, kind, sections, command };

/// An option: "--name", "--name value" or "--name=value".
struct OptionRow {
    std::string name;        ///< without the dashes
    std::string field = {};  ///< of the record that it sets, where that is called otherwise
    std::string value = {};  ///< what its value is called in a help; empty: it stands alone
    bool isTruth = false;    ///< it stands alone or has "=true" or "=false"
    bool isHidden = false;   ///< understood but not offered
    WordKind word = WordKind::text;
    std::vector<std::string_view> choices = {};  ///< the words that it takes, where these are few
    std::optional<TextKey> text = {};
};

/// A word that stands at its place in the line.
struct OperandRow {
    std::string_view name;
    TextKey what;  ///< with its article: "a file"
    WordKind word = WordKind::text;
    bool isOptional = false;
    std::vector<std::string_view> choices = {};  ///< the words that it is one of, where these are few
};

/// A command, or a kind of wallpaper that a command takes.
struct CommandRow {
    std::string words;  ///< that call it: "wallpaper set"
    std::vector<OperandRow> operands = {};
    std::vector<OptionRow> options = {};
    TextKey summary;
    std::optional<TextKey> details = {};
    bool takesKinds = false;    ///< the last operand is the word of a row of `wallpaperKinds`
    bool takesSecrets = false;  ///< a word too many may be a key and is not repeated

    const OptionRow* option(std::string_view name) const;
};

/// Every command of the program, in the order of its help.
const std::vector<CommandRow>& commands();
/// What "wallpaper set" takes behind the display; `words` is the kind's own word alone.
const std::vector<CommandRow>& wallpaperKinds();

/// The row that is called so; null when there is none.
const CommandRow* findCommand(const std::vector<CommandRow>& rows, std::string_view words);

}  // namespace quillmar
