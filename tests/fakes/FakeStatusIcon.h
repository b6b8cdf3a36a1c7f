#pragma once
#include <optional>

#include "platform/StatusIcon.h"

namespace quillmar {

/// An icon in a panel that draws no menu by itself.
class FakeStatusIcon final : public StatusIconShowing {
public:
    using Button = StatusIconClick::Button;
    StatusIconAnswering* answering = nullptr;  ///< null: not shown
    StatusIconStyle style = StatusIconStyle::symbolic;
    std::vector<StatusMenu> menus;  ///< those that were opened
    int menuChanges = 0;

    void show(StatusIconStyle wanted, StatusIconAnswering& owner) override {
        answering = &owner;
        style = wanted;
    }
    void setStyle(StatusIconStyle wanted) override { style = wanted; }
    void contextMenuDidChange() override { ++menuChanges; }
    void showMenu(StatusMenu menu) override { menus.push_back(std::move(menu)); }
    void hide() override { answering = nullptr; }
    Duration doubleClickInterval() const override { return std::chrono::milliseconds(400); }

    void click(Button button = Button::primary, bool withControl = false) {
        answering->clicked({button, withControl});
    }
    /// The command of an entry, however deep it lies in a menu; -1 where it cannot be chosen.
    static int command(const StatusMenu& menu, const std::string& title) {
        for (const StatusMenuItem& item : menu) {
            if (item.title == title && item.isEnabled) return item.command;
            if (const int below = command(item.items, title); below >= 0) return below;
        }
        return -1;
    }
    void choose(const std::string& title) { answering->chosen(command(answering->contextMenu(), title)); }
};

/// A menu on one line: "Pause*, -, More(Next, (Open))"; "(...)" cannot be chosen, "*" is checked.
inline std::string outline(const StatusMenu& menu) {
    std::string text;
    for (const StatusMenuItem& item : menu) {
        if (!text.empty()) text += ", ";
        const bool isSeparator = item.kind == StatusMenuItem::Kind::separator;
        text += isSeparator ? "-" : item.isEnabled ? item.title : "(" + item.title + ")";
        if (item.isChecked) text += "*";
        if (!item.items.empty()) text += "[" + outline(item.items) + "]";
    }
    return text;
}

}  // namespace quillmar
