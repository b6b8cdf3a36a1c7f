#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "modes/WallpaperMode.h"
#include "platform/SettingsContent.h"

namespace quillmar {

/// What stands against applying a mode.
struct ModeProblem {
    std::string message;
    std::string row;  ///< where it can be mended; empty if that is nowhere in the editor
};

/// The first problem, in the user's language. Asks for the readability of no file.
std::optional<ModeProblem> problemOf(const WallpaperMode& mode, GeneralLanguage language);

/// Everything that can be edited of a mode: its groups, with the problem at its row. `isFolded` says of each
/// group that can be folded whether it is.
std::vector<SettingsGroup> editorGroups(const WallpaperMode& mode, GeneralLanguage language,
                                        const std::function<bool(const std::string& group)>& isFolded);

/// Changes the field that the intent's row stands for. False, and nothing is changed, for a row or a value
/// that is none of the mode's.
bool change(WallpaperMode& mode, const SettingsIntent& intent);

}  // namespace quillmar
