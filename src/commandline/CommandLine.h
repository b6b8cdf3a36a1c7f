#pragma once
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "commandline/CommandTable.h"
#include "commandline/UsageError.h"

namespace quillmar {

/// An option as it was typed.
struct GivenOption {
    const OptionRow* row;
    std::optional<std::string> text;
};

/// What the user typed behind the program's name, sorted by the table of commands.
struct CommandLine {
    enum class Wish { start, version, help, command };
    Wish wish = Wish::start;
    std::string helpOn;                   ///< with `help`: the words of the command, empty for all
    const CommandRow* command = nullptr;  ///< with `command`
    const CommandRow* kind = nullptr;     ///< where the command takes one
    std::vector<std::string> operands;    ///< of the command, then of the kind; its own word is left out
    std::vector<GivenOption> options;

    /// Throws `UsageError`.
    static CommandLine parse(std::span<const std::string> words);

    bool is(std::string_view words) const { return command && command->words == words; }
    const GivenOption* option(std::string_view name) const;
    bool wantsJson() const { return option("json") != nullptr; }
    /// What `UsageError::under` is told about this line.
    std::string helpWords() const;
};

/// Whether all of the line can be understood, down to the values of its options; nothing is carried out.
/// Throws `UsageError` where not.
void judge(const CommandLine& line);

}  // namespace quillmar
