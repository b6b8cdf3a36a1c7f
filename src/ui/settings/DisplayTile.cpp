#include "ui/settings/DisplayTile.h"

#include <algorithm>

#include "ui/settings/PictureSurface.h"

namespace quillmar {
namespace {

constexpr double cornerRadius = 4;
constexpr double plateHeight = 20;
constexpr double leastNameWidth = 56;  // below it a name is nothing but dots
constexpr int markSize = 16;
constexpr double markGap = 5;
constexpr const char* draftIcon = "quillmar-draft-symbolic";
constexpr const char* failureIcon = "quillmar-failure-symbolic";
constexpr const char* primaryIcon = "quillmar-primary-symbolic";

GtkWidget* markImage(const char* icon) {
    GtkWidget* image = gtk_image_new_from_icon_name(icon, GTK_ICON_SIZE_MENU);
    gtk_widget_set_no_show_all(image, TRUE);
    return image;
}

/// A white symbol on a dark round plate, which is seen on every picture.
void drawMark(cairo_t* cr, GtkWidget* widget, const char* icon, double x, double y) {
    roundedRectangle(cr, x - 3, y - 3, markSize + 6, markSize + 6, (markSize + 6) / 2.0);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.65);
    cairo_fill(cr);
    const int scale = gtk_widget_get_scale_factor(widget);
    GtkIconInfo* info = gtk_icon_theme_lookup_icon_for_scale(
        gtk_icon_theme_get_default(), icon, markSize, scale,
        GtkIconLookupFlags(GTK_ICON_LOOKUP_FORCE_SIZE | GTK_ICON_LOOKUP_FORCE_SYMBOLIC));
    if (!info) return;
    const GdkRGBA white{1, 1, 1, 1};
    if (GdkPixbuf* pixels =
            gtk_icon_info_load_symbolic(info, &white, nullptr, nullptr, nullptr, nullptr, nullptr)) {
        cairo_surface_t* surface = gdk_cairo_surface_create_from_pixbuf(pixels, scale, nullptr);
        cairo_set_source_surface(cr, surface, x, y);
        cairo_paint(cr);
        cairo_surface_destroy(surface);
        g_object_unref(pixels);
    }
    g_object_unref(info);
}

}  // namespace

DisplayTile::DisplayTile(GtkRadioButton* group, bool isOnMap, std::function<void()> choose)
    : isOnMap_(isOnMap), button_(gtk_radio_button_new_from_widget(group)) {
    GtkWidget* content = nullptr;
    if (isOnMap_) {
        setStyleClass(button_, "quillmar-display");
        content = picture_ = gtk_drawing_area_new();
        drawing_ = Signal::connect<gboolean, cairo_t*>(GTK_DRAWING_AREA(picture_), "draw",
                                                       [this](GtkDrawingArea*, cairo_t* cr) -> gboolean {
                                                           draw(cr);
                                                           return FALSE;
                                                       });
    } else {
        content = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
        name_ = gtk_label_new(nullptr);
        gtk_label_set_ellipsize(GTK_LABEL(name_), PANGO_ELLIPSIZE_END);
        draft_ = markImage(draftIcon);
        failure_ = markImage(failureIcon);
        setStyleClass(button_, "quillmar-absent");
        for (GtkWidget* part : {name_, draft_, failure_}) gtk_container_add(GTK_CONTAINER(content), part);
    }
    gtk_container_add(GTK_CONTAINER(button_), content);
    gtk_widget_show_all(button_);
    choosing_ = Signal::connect<void>(GTK_TOGGLE_BUTTON(button_), "toggled",
                                      [choose = std::move(choose)](GtkToggleButton* button) {
                                          if (gtk_toggle_button_get_active(button)) choose();
                                      });
}

void DisplayTile::show(const SettingsArrangement::Display& display) {
    const bool isOther = display != shown_;
    shown_ = display;
    if (display.isSelected) gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button_), TRUE);
    if (!isOther) return;
    nameForAccess(button_, display.accessibleName);
    gtk_widget_set_tooltip_text(button_, display.name.c_str());
    if (isOnMap_) {
        gtk_widget_queue_draw(picture_);
        return;
    }
    gtk_label_set_text(GTK_LABEL(name_), display.name.c_str());
    gtk_widget_set_visible(draft_, display.hasUnsavedDraft);
    gtk_widget_set_visible(failure_, display.hasFailed);
}

void DisplayTile::draw(cairo_t* cr) const {
    const double width = gtk_widget_get_allocated_width(picture_);
    const double height = gtk_widget_get_allocated_height(picture_);
    roundedRectangle(cr, 0, 0, width, height, std::min({cornerRadius, width / 2, height / 2}));
    cairo_clip(cr);
    cairo_set_source_rgb(cr, 0.37, 0.36, 0.39);
    cairo_paint(cr);
    drawPicture(cr, shown_.thumbnail, width, height);
    drawName(cr, width, height);
    drawMarks(cr, width);
}

void DisplayTile::drawName(cairo_t* cr, double width, double height) const {
    if (width < leastNameWidth || height < 2 * plateHeight) return;
    cairo_set_source_rgba(cr, 0, 0, 0, 0.6);
    cairo_rectangle(cr, 0, height - plateHeight, width, plateHeight);
    cairo_fill(cr);
    PangoLayout* layout = gtk_widget_create_pango_layout(picture_, shown_.name.c_str());
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_scale_new(PANGO_SCALE_SMALL));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_width(layout, static_cast<int>(width - 12) * PANGO_SCALE);
    pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    int textHeight = 0;
    pango_layout_get_pixel_size(layout, nullptr, &textHeight);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_move_to(cr, 6, height - plateHeight + (plateHeight - textHeight) / 2);
    pango_cairo_show_layout(cr, layout);
    g_object_unref(layout);
}

void DisplayTile::drawMarks(cairo_t* cr, double width) const {
    double x = width - markSize - markGap;
    const auto mark = [&](bool isSet, const char* icon) {
        if (!isSet || x < 0) return;
        drawMark(cr, picture_, icon, x, markGap);
        x -= markSize + 2 * markGap;
    };
    mark(shown_.hasFailed, failureIcon);
    mark(shown_.hasUnsavedDraft, draftIcon);
    mark(shown_.isPrimary, primaryIcon);
}

}  // namespace quillmar
