#pragma once
#include <memory>
#include <vector>

#include "ui/settings/ArrangementView.h"
#include "ui/settings/PreviewView.h"
#include "ui/settings/RowView.h"

namespace quillmar {

/// Draws panes into a box: displays to choose from, a preview, groups of rows, some of them as cards that
/// open. What one pane has in common with the former is changed in place, so that the focus, the cursor and
/// an opened list stay.
class PaneView {
public:
    struct Wishes {
        std::function<void(SettingsIntent)> act;
        std::function<void(const std::string&, bool)> setExpanded;
    };
    PaneView(GtkBox* box, Wishes wishes);
    PaneView(const PaneView&) = delete;
    PaneView& operator=(const PaneView&) = delete;
    ~PaneView();

    /// Many new rows come up a few in a frame, from the top, so that no turn of the main loop is long.
    void show(SettingsPane pane);

private:
    struct Group {
        std::string id;
        GtkWidget* group = nullptr;
        HdyExpanderRow* card = nullptr;  ///< null where the rows stand open
        GtkWidget* list = nullptr;       ///< what has the rows; null before the first one
        std::vector<std::unique_ptr<RowView>> rows;
        Signal expanding;
        Signal activating;
    };

    void showNow();
    void makeHero();
    void fillHero(const SettingsHero& hero);
    void showDisplays(const SettingsPane& pane);
    std::unique_ptr<Group> makeGroup(const SettingsGroup& group);
    std::unique_ptr<Group> takeGroup(std::vector<std::unique_ptr<Group>>& from, const SettingsGroup& group);
    void fill(Group& view, const SettingsGroup& group);
    void fillRows(Group& view, const SettingsGroup& group);
    static void addRow(Group& view, RowView& row, int position);

    GtkBox* box_;
    Wishes wishes_;
    SettingsPane pane_;
    bool isShowing_ = false;
    int newRowsLeft_ = 0;  ///< that may be made in this frame
    guint nextFrame_ = 0;  ///< the tick callback that makes more
    GtkWidget* hero_ = nullptr;
    GtkWidget* heroImage_ = nullptr;
    GtkWidget* heroTitle_ = nullptr;
    GtkWidget* heroText_ = nullptr;
    GtkWidget* displays_ = nullptr;  ///< arrangement and preview, made when a pane first has them
    std::unique_ptr<ArrangementView> arrangement_;
    std::unique_ptr<PreviewView> preview_;
    std::vector<std::unique_ptr<Group>> groups_;
};

}  // namespace quillmar
