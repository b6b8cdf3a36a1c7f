#include "ui/settings/ArrangementView.h"

#include <algorithm>
#include <cmath>

namespace quillmar {
namespace {

constexpr int mapHeight = 170;
constexpr int mapMargin = 10;
constexpr int gap = 2;         // on every side of a display, so that neighbours are told apart
constexpr int leastSide = 14;  // of the smallest display on a crowded map
constexpr int mostAbsentHeight = 150;

PixelRect extentOf(const std::vector<SettingsArrangement::Display>& displays) {
    if (displays.empty()) return {};
    PixelRect extent = displays.front().bounds;
    for (const SettingsArrangement::Display& display : displays) {
        const auto right = std::max(extent.right(), display.bounds.right());
        const auto bottom = std::max(extent.bottom(), display.bounds.bottom());
        extent.x = std::min(extent.x, display.bounds.x);
        extent.y = std::min(extent.y, display.bounds.y);
        extent.width = right - extent.x;
        extent.height = bottom - extent.y;
    }
    return extent;
}

}  // namespace

ArrangementView::ArrangementView(std::function<void(SettingsIntent)> act)
    : act_(std::move(act)),
      box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 6)),
      title_(wrappedLabel("heading")),
      map_(gtk_overlay_new()),
      absentTitle_(wrappedLabel("dim-label")),
      absentScroller_(gtk_scrolled_window_new(nullptr, nullptr)),
      absentBox_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0)),
      none_(gtk_radio_button_new(nullptr)) {
    GtkWidget* ground = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_size_request(ground, -1, mapHeight);
    gtk_container_add(GTK_CONTAINER(map_), ground);
    setStyleClass(ground, "quillmar-map");
    gtk_widget_set_no_show_all(none_, TRUE);
    gtk_overlay_add_overlay(GTK_OVERLAY(map_), none_);
    placing_ = Signal::connect<gboolean, GtkWidget*, GdkRectangle*>(
        GTK_OVERLAY(map_), "get-child-position",
        [this](GtkOverlay*, GtkWidget* tile, GdkRectangle* room) -> gboolean { return place(tile, *room); });
    GtkScrolledWindow* scroller = GTK_SCROLLED_WINDOW(absentScroller_);
    gtk_scrolled_window_set_policy(scroller, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(scroller, TRUE);
    gtk_scrolled_window_set_max_content_height(scroller, mostAbsentHeight);
    gtk_container_add(GTK_CONTAINER(absentScroller_), absentBox_);
    for (GtkWidget* part : {title_, map_, absentTitle_, absentScroller_})
        gtk_container_add(GTK_CONTAINER(box_), part);
    gtk_widget_set_margin_bottom(box_, 6);
    gtk_widget_show_all(box_);
}

void ArrangementView::show(const SettingsArrangement& arrangement) {
    isShowing_ = true;
    id_ = arrangement.id;
    setTextOrHide(title_, arrangement.title);
    nameForAccess(map_, arrangement.title);
    if (const PixelRect extent = extentOf(arrangement.connected); extent != extent_) {
        extent_ = extent;
        gtk_widget_queue_resize(map_);
    }
    fill(connected_, arrangement.connected, true);
    fill(absent_, arrangement.absent, false);
    const auto isSelected = [](const SettingsArrangement::Display& display) { return display.isSelected; };
    if (std::ranges::none_of(arrangement.connected, isSelected) &&
        std::ranges::none_of(arrangement.absent, isSelected))
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(none_), TRUE);
    setTextOrHide(absentTitle_, arrangement.absent.empty() ? std::string() : arrangement.absentTitle);
    nameForAccess(absentBox_, arrangement.absentTitle);
    gtk_widget_set_visible(absentScroller_, !arrangement.absent.empty());
    isShowing_ = false;
}

void ArrangementView::fill(Tiles& tiles, const std::vector<SettingsArrangement::Display>& displays,
                           bool areOnMap) {
    Tiles former = std::exchange(tiles, {});
    for (const SettingsArrangement::Display& display : displays) {
        const auto same = std::ranges::find_if(
            former, [&](const auto& tile) { return tile && tile->shown().id == display.id; });
        tiles.push_back(same == former.end() ? makeTile(display.id, areOnMap) : std::move(*same));
        if (areOnMap && tiles.back()->shown().bounds != display.bounds) gtk_widget_queue_resize(map_);
        tiles.back()->show(display);
        // Tab and screen readers go in the order of the model.
        const int position = static_cast<int>(tiles.size());
        if (areOnMap) {
            gtk_overlay_reorder_overlay(GTK_OVERLAY(map_), tiles.back()->widget(), position);
        } else {
            gtk_box_reorder_child(GTK_BOX(absentBox_), tiles.back()->widget(), position - 1);
        }
    }
    for (const auto& tile : former) {
        if (tile) gtk_widget_destroy(tile->widget());
    }
}

std::unique_ptr<DisplayTile> ArrangementView::makeTile(const std::string& id, bool isOnMap) {
    auto tile = std::make_unique<DisplayTile>(GTK_RADIO_BUTTON(none_), isOnMap, [this, id] {
        if (!isShowing_) act_({id_, id});
    });
    if (isOnMap) {
        gtk_overlay_add_overlay(GTK_OVERLAY(map_), tile->widget());
    } else {
        gtk_container_add(GTK_CONTAINER(absentBox_), tile->widget());
    }
    return tile;
}

/// Where a display's tile stands on the map; false for what is no tile.
bool ArrangementView::place(GtkWidget* tile, GdkRectangle& room) const {
    const auto found =
        std::ranges::find_if(connected_, [&](const auto& other) { return other->widget() == tile; });
    if (found == connected_.end() || extent_.width < 1 || extent_.height < 1) return false;
    const int width = gtk_widget_get_allocated_width(map_);
    const int height = gtk_widget_get_allocated_height(map_);
    const double scale = std::min((width - 2.0 * mapMargin) / static_cast<double>(extent_.width),
                                  (height - 2.0 * mapMargin) / static_cast<double>(extent_.height));
    const double left = (width - static_cast<double>(extent_.width) * scale) / 2;
    const double top = (height - static_cast<double>(extent_.height) * scale) / 2;
    const PixelRect& bounds = (*found)->shown().bounds;
    const auto at = [&](double start, std::int64_t distance) {
        return static_cast<int>(std::lround(start + (static_cast<double>(distance) * scale)));
    };
    room.x = at(left, bounds.x - extent_.x) + gap;
    room.y = at(top, bounds.y - extent_.y) + gap;
    room.width = std::max(leastSide, at(left, bounds.right() - extent_.x) - gap - room.x);
    room.height = std::max(leastSide, at(top, bounds.bottom() - extent_.y) - gap - room.y);
    return true;
}

}  // namespace quillmar
