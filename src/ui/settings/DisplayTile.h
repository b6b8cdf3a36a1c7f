#pragma once
#include <functional>

#include "platform/SettingsDisplays.h"
#include "ui/settings/Widgets.h"

namespace quillmar {

/// One display, to be chosen: on the map with its picture, among the absent ones as a line of text.
class DisplayTile {
public:
    /// `group`: a radio button of the others. `choose` is called also while the tile is shown another state.
    DisplayTile(GtkRadioButton* group, bool isOnMap, std::function<void()> choose);
    DisplayTile(const DisplayTile&) = delete;
    DisplayTile& operator=(const DisplayTile&) = delete;

    GtkWidget* widget() const { return button_; }
    const SettingsArrangement::Display& shown() const { return shown_; }
    bool isOnMap() const { return isOnMap_; }
    void show(const SettingsArrangement::Display& display);

private:
    void draw(cairo_t* cr) const;
    void drawName(cairo_t* cr, double width, double height) const;
    void drawMarks(cairo_t* cr, double width) const;

    bool isOnMap_;
    SettingsArrangement::Display shown_;
    GtkWidget* button_;
    GtkWidget* picture_ = nullptr;  ///< on the map
    GtkWidget* name_ = nullptr;     ///< in the list, with the marks beside it
    GtkWidget* draft_ = nullptr;
    GtkWidget* failure_ = nullptr;
    Signal drawing_;
    Signal choosing_;
};

}  // namespace quillmar
