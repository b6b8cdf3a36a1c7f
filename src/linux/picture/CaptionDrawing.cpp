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

}  // namespace

CaptionDrawing::CaptionDrawing(const PictureCaption& caption, PixelSize canvas) {
    const Ref<PangoLayout> layout = layOut(caption);
    int textWidth = 0;
    int textHeight = 0;
    pango_layout_get_pixel_size(layout.get(), &textWidth, &textHeight);
    const double plateWidth = std::min(textWidth + 2 * caption.horizontalInset, caption.maximumPlateWidth);
    const double plateHeight = textHeight + 2 * caption.verticalInset;
    const double plateTop = canvas.height - caption.bottom - plateHeight;

    const double right = caption.left + std::max(plateWidth, caption.horizontalInset + textWidth);
    left_ = std::clamp(static_cast<int>(std::floor(caption.left)), 0, canvas.width);
    top_ = std::clamp(static_cast<int>(std::floor(plateTop)), 0, canvas.height);
    width_ = std::clamp(static_cast<int>(std::ceil(right)), left_, canvas.width) - left_;
    height_ = std::clamp(static_cast<int>(std::ceil(plateTop + plateHeight)), top_, canvas.height) - top_;
    if (width_ == 0) height_ = 0;  // nothing of it is on the canvas
    if (height_ == 0) return;

    pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    const CairoOwned<cairo_surface_t> surface(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels_.data()), CAIRO_FORMAT_ARGB32, width_, height_, width_ * 4));
    const CairoOwned<cairo_t> cairo(cairo_create(surface.get()));
    cairo_translate(cairo.get(), caption.left - left_, plateTop - top_);
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
}

void CaptionDrawing::blendInto(std::span<std::uint8_t> rgbRow, int y) const {
    if (!covers(y)) return;
    const std::uint32_t* pixel =
        &pixels_[static_cast<std::size_t>(y - top_) * static_cast<std::size_t>(width_)];
    std::uint8_t* target = &rgbRow[static_cast<std::size_t>(left_) * 3];
    for (int x = 0; x < width_; ++x, ++pixel, target += 3) {
        const std::uint32_t uncovered = 255 - (*pixel >> 24);
        for (int channel = 0; channel < 3; ++channel) {
            const std::uint32_t own = (*pixel >> (16 - 8 * channel)) & 0xff;
            target[channel] = static_cast<std::uint8_t>(
                std::min<std::uint32_t>(own + (target[channel] * uncovered + 127) / 255, 255));
        }
    }
}

}  // namespace quillmar
