#include "linux/picture/CaptionDrawing.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "base/Text.h"
#include "linux/glib/Ref.h"

namespace quillmar {
namespace {

struct CairoFree {
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
};
template <class T>
using CairoOwned = std::unique_ptr<T, CairoFree>;

void roundedRectangle(cairo_t* cairo, double width, double height, double corner) {
    const double radius = std::max(std::min({corner, width / 2, height / 2}), 0.0);
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_path(cairo);
    cairo_arc(cairo, width - radius, radius, radius, -quarter, 0);
    cairo_arc(cairo, width - radius, height - radius, radius, 0, quarter);
    cairo_arc(cairo, radius, height - radius, radius, quarter, 2 * quarter);
    cairo_arc(cairo, radius, radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(cairo);
}

Ref<PangoLayout> layOut(const PictureCaption& caption) {
    // A font map of its own: the shared one belongs to the main thread.
    const auto fonts = Ref<PangoFontMap>::adopt(pango_cairo_font_map_new());
    const auto context = Ref<PangoContext>::adopt(pango_font_map_create_context(fonts.get()));
    auto layout = Ref<PangoLayout>::adopt(pango_layout_new(context.get()));
    const CairoOwned<PangoFontDescription> font(pango_font_description_new());
    pango_font_description_set_family_static(font.get(), "monospace");
    pango_font_description_set_weight(font.get(), PANGO_WEIGHT_MEDIUM);
    pango_font_description_set_absolute_size(font.get(), caption.fontSize * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), font.get());
    const std::string text = repairedUtf8(caption.text);
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    return layout;
}

/// The pixels of the canvas that the caption lies on.
struct Place {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// Lays pixels (blue, green, red, opacity, the colours already multiplied by it) over the canvas.
void blend(const std::vector<std::uint32_t>& pixels, const Place& place, PixelBuffer& canvas) {
    for (int y = 0; y < place.height; ++y) {
        const std::uint32_t* pixel =
            &pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(place.width)];
        std::uint8_t* target =
            &canvas.row(place.top + y)[static_cast<std::size_t>(place.left) * PixelBuffer::pixelBytes];
        for (int x = 0; x < place.width; ++x, ++pixel, target += PixelBuffer::pixelBytes) {
            const std::uint32_t uncovered = 255 - (*pixel >> 24);
            for (int channel = 0; channel < 3; ++channel) {
                const std::uint32_t own = (*pixel >> (8 * channel)) & 0xff;
                target[channel] = static_cast<std::uint8_t>(
                    std::min<std::uint32_t>(own + (target[channel] * uncovered + 127) / 255, 255));
            }
        }
    }
}

}  // namespace

void drawCaption(const PictureCaption& caption, PixelBuffer& canvas) {
    const Ref<PangoLayout> layout = layOut(caption);
    int textWidth = 0;
    int textHeight = 0;
    pango_layout_get_pixel_size(layout.get(), &textWidth, &textHeight);
    const double plateWidth = std::min(textWidth + 2 * caption.horizontalInset, caption.maximumPlateWidth);
    const double plateHeight = textHeight + 2 * caption.verticalInset;
    const auto [canvasWidth, canvasHeight] = canvas.size();
    const double plateTop = canvasHeight - caption.bottom - plateHeight;
    const double right = caption.left + std::max(plateWidth, caption.horizontalInset + textWidth);

    Place place;
    place.left = std::clamp(static_cast<int>(std::floor(caption.left)), 0, canvasWidth);
    place.top = std::clamp(static_cast<int>(std::floor(plateTop)), 0, canvasHeight);
    place.width = std::clamp(static_cast<int>(std::ceil(right)), place.left, canvasWidth) - place.left;
    place.height =
        std::clamp(static_cast<int>(std::ceil(plateTop + plateHeight)), place.top, canvasHeight) - place.top;
    if (place.width == 0 || place.height == 0) return;  // nothing of it is on the canvas

    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(place.width) *
                                      static_cast<std::size_t>(place.height));
    const CairoOwned<cairo_surface_t> surface(
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels.data()),
                                            CAIRO_FORMAT_ARGB32, place.width, place.height, place.width * 4));
    const CairoOwned<cairo_t> cairo(cairo_create(surface.get()));
    cairo_translate(cairo.get(), caption.left - place.left, plateTop - place.top);
    if (plateWidth > 0) {
        roundedRectangle(cairo.get(), plateWidth, plateHeight, caption.verticalInset);
        cairo_set_source_rgba(cairo.get(), 0, 0, 0, caption.plateOpacity);
        cairo_fill(cairo.get());
    }
    cairo_set_source_rgb(cairo.get(), 1, 1, 1);
    cairo_move_to(cairo.get(), caption.horizontalInset, caption.verticalInset);
    pango_cairo_show_layout(cairo.get(), layout.get());
    cairo_surface_flush(surface.get());
    if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(cairo_status_to_string(cairo_status(cairo.get())));
    blend(pixels, place, canvas);
}

}  // namespace quillmar
