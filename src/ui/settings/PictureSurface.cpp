#include "ui/settings/PictureSurface.h"

#include <numbers>

namespace quillmar {

void drawPicture(cairo_t* cr, const SettingsPicture& picture, double width, double height) {
    if (!picture.pixels) return;
    const PixelBuffer& pixels = *picture.pixels;
    // The buffer has the rows as cairo wants them; nothing is drawn on it.
    auto* rows = const_cast<unsigned char*>(pixels.bytes().data());
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(rows, CAIRO_FORMAT_RGB24, pixels.size().width,
                                            pixels.size().height, static_cast<int>(pixels.rowBytes()));
    cairo_save(cr);
    cairo_scale(cr, width / pixels.size().width, height / pixels.size().height);
    cairo_set_source_surface(cr, surface, 0, 0);
    // Without this the edges mix with what is not there.
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
    cairo_rectangle(cr, 0, 0, pixels.size().width, pixels.size().height);
    cairo_fill(cr);
    cairo_restore(cr);
    cairo_surface_destroy(surface);
}

void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius) {
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + width - radius, y + radius, radius, -quarter, 0);
    cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, quarter);
    cairo_arc(cr, x + radius, y + height - radius, radius, quarter, 2 * quarter);
    cairo_arc(cr, x + radius, y + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(cr);
}

}  // namespace quillmar
