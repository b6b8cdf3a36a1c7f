#pragma once
#include <memory>
#include <vector>

#include "ui/settings/RowView.h"

namespace quillmar {

/// Draws panes into a box: groups of rows, some of them as cards that open. A pane of the same shape is
/// changed in place, so that the focus and an opened list stay.
class PaneView {
public:
    struct Wishes {
        std::function<void(SettingsIntent)> act;
        std::function<void(const std::string&, bool)> setExpanded;
    };
    PaneView(GtkBox* box, Wishes wishes) : box_(box), wishes_(std::move(wishes)) {}
    PaneView(const PaneView&) = delete;
    PaneView& operator=(const PaneView&) = delete;

    void show(const SettingsPane& pane);

private:
    struct Group {
        HdyPreferencesGroup* group = nullptr;
        HdyExpanderRow* card = nullptr;  ///< null where the rows stand open
        Signal expanding;
        std::vector<std::unique_ptr<RowView>> rows;
    };

    void rebuild(const SettingsPane& pane);
    void addHero();
    std::unique_ptr<Group> makeGroup(const SettingsGroup& group);
    void fill(Group& view, const SettingsGroup& group);
    void fillHero(const SettingsHero& hero);

    GtkBox* box_;
    Wishes wishes_;
    std::string shape_;
    bool isShowing_ = false;
    GtkWidget* heroImage_ = nullptr;
    GtkWidget* heroTitle_ = nullptr;
    GtkWidget* heroText_ = nullptr;
    std::vector<std::unique_ptr<Group>> groups_;
};

}  // namespace quillmar
