#include "ui/settings/PreviewView.h"

#include <algorithm>
#include <cmath>

#include "ui/settings/PictureSurface.h"

namespace quillmar {
namespace {

constexpr int mostWidth = 220;
constexpr int mostHeight = 170;
constexpr double cornerRadius = 8;

}  // namespace

PreviewView::PreviewView()
    : box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 6)),
      title_(wrappedLabel("heading")),
      picture_(gtk_drawing_area_new()),
      text_(wrappedLabel("dim-label")),
      spinner_(gtk_spinner_new()) {
    gtk_label_set_justify(GTK_LABEL(text_), GTK_JUSTIFY_CENTER);
    gtk_label_set_xalign(GTK_LABEL(text_), 0.5);
    gtk_label_set_max_width_chars(GTK_LABEL(text_), 24);
    g_object_set(text_, "margin", 12, "valign", GTK_ALIGN_CENTER, nullptr);
    g_object_set(spinner_, "halign", GTK_ALIGN_CENTER, "valign", GTK_ALIGN_CENTER, nullptr);
    GtkWidget* overlay = gtk_overlay_new();
    gtk_widget_set_halign(overlay, GTK_ALIGN_CENTER);
    gtk_container_add(GTK_CONTAINER(overlay), picture_);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), text_);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), spinner_);
    gtk_container_add(GTK_CONTAINER(box_), title_);
    gtk_container_add(GTK_CONTAINER(box_), overlay);
    atk_object_set_role(gtk_widget_get_accessible(picture_), ATK_ROLE_IMAGE);
    drawing_ = Signal::connect<gboolean, cairo_t*>(GTK_DRAWING_AREA(picture_), "draw",
                                                   [this](GtkDrawingArea*, cairo_t* cr) -> gboolean {
                                                       draw(cr);
                                                       return FALSE;
                                                   });
    gtk_widget_show_all(box_);
}

void PreviewView::show(const SettingsPreview& preview) {
    const double scale = std::min(static_cast<double>(mostWidth) / preview.canvas.width,
                                  static_cast<double>(mostHeight) / preview.canvas.height);
    gtk_widget_set_size_request(picture_, static_cast<int>(std::lround(preview.canvas.width * scale)),
                                static_cast<int>(std::lround(preview.canvas.height * scale)));
    setTextOrHide(title_, preview.title);
    setTextOrHide(text_, preview.picture.pixels ? std::string() : preview.text);
    nameForAccess(picture_, preview.title);
    describeForAccess(picture_, preview.text);
    gtk_widget_set_visible(spinner_, preview.isBusy);
    nameForAccess(spinner_, preview.title);
    // One that spins unseen would wake the program up for every frame.
    g_object_set(spinner_, "active", preview.isBusy, nullptr);
    if (preview.picture != shown_.picture) gtk_widget_queue_draw(picture_);
    shown_ = preview;
}

void PreviewView::draw(cairo_t* cr) const {
    const double width = gtk_widget_get_allocated_width(picture_);
    const double height = gtk_widget_get_allocated_height(picture_);
    roundedRectangle(cr, 0, 0, width, height, cornerRadius);
    cairo_clip(cr);
    GdkRGBA text{};
    gtk_style_context_get_color(gtk_widget_get_style_context(picture_), GTK_STATE_FLAG_NORMAL, &text);
    text.alpha = 0.1;
    gdk_cairo_set_source_rgba(cr, &text);
    cairo_paint(cr);
    drawPicture(cr, shown_.picture, width, height);
}

}  // namespace quillmar
