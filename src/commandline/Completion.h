#pragma once
#include <span>
#include <string>
#include <vector>

#include "commandline/CommandTable.h"

namespace quillmar {

/// What can stand for the last word of an unfinished command line.
struct Completion {
    std::vector<std::string> words;  ///< that go on from what is there
    /// `file`, `folder`: the shell's own work. `display`: the names of displays besides the words.
    WordKind others = WordKind::text;
    bool goesOn = false;  ///< a word may be followed by more of the same: no blank behind it
};

/// Looks at all words but the last as typed already; the last one may be empty.
Completion complete(std::span<const std::string> words);

/// The completion as a shell reads it: a line ":file", ":folder", ":display" or ":words", one ":nospace"
/// where it goes on, then a word a line.
std::string completionText(const Completion& completion);

}  // namespace quillmar
