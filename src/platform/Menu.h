#pragma once
#include <string>
#include <vector>

namespace quillmar {

/// An entry of a menu, as a value that any desktop can show. `Command` is what the menu's owner is told when
/// the entry is chosen.
template <class Command>
struct MenuItem {
    enum class Kind { command, separator, submenu };
    enum class Modifiers { command, commandOption, commandShift };  ///< with which the key goes

    Kind kind = Kind::command;
    std::string title;
    std::string key;  ///< key equivalent, empty for none
    Modifiers modifiers = Modifiers::command;
    Command command{};
    bool isEnabled = true;
    std::vector<MenuItem> items;  ///< of a submenu

    bool operator==(const MenuItem&) const = default;

    static MenuItem separator() { return {.kind = Kind::separator}; }
};

}  // namespace quillmar
