#pragma once
#include <string>
#include <vector>

#include "base/Localization.h"
#include "platform/StatusIcon.h"

namespace quillmar {

/// What an entry of the status item's menu does when it is chosen.
struct StatusItemCommand {
    enum class Action { openSettings, quit, carryOut };
    Action action = Action::quit;
    std::string title;               ///< of the entry
    std::vector<std::string> words;  ///< to be carried out as if they were typed behind the program's name

    bool operator==(const StatusItemCommand&) const = default;
};

/// The commands of all menus, each under a number that stays: a panel may still show an old menu.
class StatusItemCommands {
public:
    /// The number of the command; always the same for the same one.
    int numberOf(StatusItemCommand command);
    /// Null for a number that none has.
    const StatusItemCommand* find(int number) const;

private:
    std::vector<StatusItemCommand> commands_;
};

/// A display in the menu, and what can be done with its picture.
struct StatusItemDisplay {
    std::string id;
    std::string name;
    bool hasNext = false;
    bool hasPrevious = false;
    bool hasFile = false;
    bool canTrash = false;
    bool hasPage = false;
};

/// Whether settings are there: not read yet, unreadable, or as they should be.
enum class StatusItemReadiness { loading, recovery, ready };

/// Everything that the context menu depends on.
struct StatusItemMenuState {
    StatusItemReadiness readiness = StatusItemReadiness::loading;
    GeneralLanguage language = GeneralLanguage::english;
    bool pausesRotations = false;
    std::vector<StatusItemDisplay> displays;
};

StatusMenu statusItemContextMenu(const StatusItemMenuState& state, StatusItemCommands& commands);

}  // namespace quillmar
