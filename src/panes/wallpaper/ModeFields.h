#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Localization.h"
#include "modes/WallpaperApplicationError.h"
#include "modes/WallpaperModeKind.h"

namespace quillmar {

/// How a field is edited, where its type alone does not say.
enum class FieldControl { ofItsType, secret, duration, color, palette };

/// What a person calls a field of a mode's record, and when there is something to be done with it.
struct FieldText {
    /// Another field's value: "true", an enumeration's name, or one of the members of a list.
    struct Need {
        std::string_view field;
        std::string_view value;
    };
    std::string_view field;  ///< its key in the settings document
    TextKey title;           ///< of a list or a set, whose members have rows of their own, none of these
    std::optional<TextKey> subtitle = {};
    FieldControl control = FieldControl::ofItsType;
    std::optional<Need> need = {};  ///< without it the field has no effect, and is not shown
    std::vector<WallpaperApplicationError::Case> problems = {};  ///< those that are mended here
    double minimum = 1;                                          ///< of a number, with the next
    double maximum = 86399;
};

struct FieldGroupText {
    std::string_view id;
    TextKey title;
    std::vector<FieldText> fields;
    bool isFolded = false;  ///< at first: seldom wanted, or long
};

/// The one table of what can be edited of a kind, in the order in which it is shown. Empty for `disabled`
/// and for the kinds that have no editor yet.
std::span<const FieldGroupText> fieldGroups(WallpaperModeKind kind);

/// Fields that the program itself writes: they stand in no editor.
std::span<const std::string_view> programFields();

}  // namespace quillmar
