#pragma once
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "display/DisplayInfo.h"

namespace quillmar {

/// What the user typed behind the program's name.
struct CommandLine {
    enum class Command { run, showVersion, showHelp, listDisplays, askRunningProgram, refuse };
    Command command = Command::run;
    bool asJson = false;
    std::vector<std::string> arguments;  ///< with `askRunningProgram`: the whole line
    std::string complaint;               ///< with `refuse`: one sentence on what was wrong

    static CommandLine parse(std::span<const std::string_view> arguments);
};

/// The exit status of a call that could not be understood.
inline constexpr int usageStatus = 2;

void printHelp(std::ostream& out);
/// A table for people: a line for each display, the main one marked.
void printDisplays(std::ostream& out, const std::vector<DisplayInfo>& displays);

}  // namespace quillmar
