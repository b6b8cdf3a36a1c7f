#pragma once
#include <string>

#include "commandline/CommandTable.h"

namespace quillmar {

/// How a command is called, without the program's name: "wallpaper next [DISPLAY|all]".
std::string usageOf(const CommandRow& row);
/// An option with what it takes: "--layout center|tile|stretch|fit|fill".
std::string usageOf(const OptionRow& row);

/// The help on the command of these words, on a group of commands or, where `words` are empty, on all.
/// `words` are those of a parsed line.
std::string helpText(const std::string& words, GeneralLanguage language);

}  // namespace quillmar
