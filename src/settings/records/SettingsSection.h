#pragma once
#include <array>
#include <string_view>

namespace quillmar {

/// A section of the Settings window, in the order of its sidebar. Their names are those of the command line.
enum class SettingsSection { general, wallpaper, backup, about };
constexpr auto enumNames(SettingsSection) {
    return std::to_array<std::string_view>({"general", "wallpaper", "backup", "about"});
}

}  // namespace quillmar
