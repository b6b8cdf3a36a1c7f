#pragma once
#include <string>
#include <vector>

#include "async/MainLoop.h"

namespace quillmar {

/// A line of a menu, with the menu below it where it has one.
struct StatusMenuItem {
    enum class Kind { command, check, submenu, separator };
    Kind kind = Kind::command;
    std::string title;  ///< plain text in the user's language
    std::string image;  ///< an icon's name in the desktop's themes; empty: none
    std::string key;    ///< a character that chooses it, pressed with Control in the open menu; empty: none
    bool isEnabled = true;
    bool isChecked = false;
    int command = 0;  ///< what `StatusIconAnswering::chosen` is told
    std::vector<StatusMenuItem> items;

    bool operator==(const StatusMenuItem&) const = default;
};
using StatusMenu = std::vector<StatusMenuItem>;

/// How the icon is drawn: in its colours, or in one that stands out from the panel.
enum class StatusIconStyle { symbolic, colorful };

/// A mouse button let go over the icon.
struct StatusIconClick {
    enum class Button { primary, secondary, middle };
    Button button = Button::primary;
    bool withControl = false;  ///< false also where the panel does not say
};

/// Who is told what the user does with the icon. Called from the main loop, while the icon is shown.
class StatusIconAnswering {
public:
    virtual ~StatusIconAnswering() = default;
    /// Each click by itself: whether two are a double click is for this side to say.
    virtual void clicked(const StatusIconClick& click) = 0;
    /// What the context menu says now, for a panel that shows it by itself.
    virtual StatusMenu contextMenu() = 0;
    /// Such a panel is about to show it.
    virtual void contextMenuWillShow() = 0;
    /// `StatusMenuItem::command` of what was chosen in any menu, also in one that was shown a while ago.
    virtual void chosen(int command) = 0;
};

/// The program's icon among those of the desktop's panel. It is there whenever a panel that takes icons is,
/// one that comes or starts anew among them; nobody is told where there is none. Main thread.
class StatusIconShowing {
public:
    virtual ~StatusIconShowing() = default;
    /// Shows the icon until `hide`; `answering` stays until then. In place of one that was shown before.
    virtual void show(StatusIconStyle style, StatusIconAnswering& answering) = 0;
    virtual void setStyle(StatusIconStyle style) = 0;
    /// What `contextMenu` says has changed. A menu that is open stays as it is.
    virtual void contextMenuDidChange() = 0;
    /// Opens a menu where the icon was clicked last.
    virtual void showMenu(StatusMenu menu) = 0;
    /// Takes the icon and its menus away; nothing is answered any more.
    virtual void hide() = 0;
    /// The longest time between the two clicks of a double click, as this desktop is set.
    virtual Duration doubleClickInterval() const = 0;
};

}  // namespace quillmar
