#pragma once
#include <memory>
#include <vector>

#include "platform/SettingsContent.h"
#include "ui/settings/DisplayTile.h"

namespace quillmar {

/// The displays drawn to scale, as radio buttons with pictures: the arrow keys go from one to the next as
/// they stand, and assistive technology finds each by its name. Below them those that are not connected.
class ArrangementView {
public:
    explicit ArrangementView(std::function<void(SettingsIntent)> act);
    ArrangementView(const ArrangementView&) = delete;
    ArrangementView& operator=(const ArrangementView&) = delete;

    GtkWidget* widget() const { return box_; }
    void show(const SettingsArrangement& arrangement);

private:
    using Tiles = std::vector<std::unique_ptr<DisplayTile>>;
    void fill(Tiles& tiles, const std::vector<SettingsArrangement::Display>& displays, bool areOnMap);
    std::unique_ptr<DisplayTile> makeTile(const std::string& id, bool isOnMap);
    bool place(GtkWidget* tile, GdkRectangle& room) const;

    std::function<void(SettingsIntent)> act_;
    std::string id_;
    GtkWidget* box_;
    GtkWidget* title_;
    GtkWidget* map_;
    GtkWidget* absentTitle_;
    GtkWidget* absentScroller_;
    GtkWidget* absentBox_;
    GtkWidget* none_;  ///< the radio button that is chosen when no display is; never seen
    Tiles connected_;
    Tiles absent_;
    PixelRect extent_;  ///< of all connected displays
    bool isShowing_ = false;
    Signal placing_;
};

}  // namespace quillmar
