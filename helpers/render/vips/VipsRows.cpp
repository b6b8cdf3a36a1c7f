#include "render/vips/VipsRows.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace quillmar {
namespace {

constexpr int stripRows = 32;

/// Calls an operation that yields its result through a pointer; an empty reference when it fails.
template <class... Arguments>
Ref<VipsImage> result(int (*operation)(VipsImage*, VipsImage**, Arguments..., ...),
                      const Ref<VipsImage>& image, auto... arguments) {
    VipsImage* out = nullptr;
    if (operation(image.get(), &out, arguments..., static_cast<char*>(nullptr)) != 0) return {};
    return Ref<VipsImage>::adopt(out);
}

Ref<VipsImage> needed(Ref<VipsImage> image) {
    if (!image) throwVipsError();
    return image;
}

Ref<VipsImage> inSrgb(const Ref<VipsImage>& image) {
    if (vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) != 0) {
        auto converted = result(&vips_icc_transform, image, "srgb", "embedded", TRUE);
        if (converted) return converted;
        vips_error_clear();  // a profile that does not fit its picture: the pixels still speak for themselves
    }
    return needed(result(&vips_colourspace, image, VIPS_INTERPRETATION_sRGB));
}

Ref<VipsImage> opaque(const Ref<VipsImage>& image, RgbColor color) {
    if (!vips_image_hasalpha(image.get())) return image;
    const std::array<double, 3> channels{double(color.red), double(color.green), double(color.blue)};
    VipsArrayDouble* background = vips_array_double_new(channels.data(), 3);
    auto flattened = result(&vips_flatten, image, "background", background);
    vips_area_unref(VIPS_AREA(background));
    return needed(std::move(flattened));
}

}  // namespace

void throwVipsError() {
    std::string reason = vips_error_buffer();
    vips_error_clear();
    std::ranges::replace(reason, '\n', ' ');
    throw PictureDecodingError(reason.empty() ? "The picture is damaged." : reason,
                               reason.contains("out of memory") ? PictureDecodingError::Reason::tooLarge
                                                                : PictureDecodingError::Reason::unreadable);
}

VipsRows::VipsRows(Ref<VipsImage> image, const GridRegion& region, RgbColor background)
    : image_(opaque(inSrgb(image), background)),
      region_(region),
      next_(region.top),
      stripEnd_(region.top),
      row_(static_cast<std::size_t>(region.width()) * pixelBytes) {
    image_ = needed(result(&vips_cast, image_, VIPS_FORMAT_UCHAR));
    if (vips_image_get_bands(image_.get()) != 3)
        throw PictureDecodingError("The picture has no known colours.");
}

VipsRows::~VipsRows() {
    strip_ = {};
    image_ = {};
    // The library keeps buffers for each thread that used it.
    vips_thread_shutdown();
}

std::span<const std::uint8_t> VipsRows::nextRow() {
    if (next_ >= stripEnd_) {
        if (!strip_) strip_ = Ref<VipsRegion>::adopt(vips_region_new(image_.get()));
        const VipsRect rect{region_.left, next_, region_.width(),
                            std::min(stripRows, region_.bottom - next_)};
        if (vips_region_prepare(strip_.get(), &rect) != 0) throwVipsError();
        stripEnd_ = next_ + rect.height;
    }
    const VipsPel* pixels = VIPS_REGION_ADDR(strip_.get(), region_.left, next_);
    for (std::uint8_t* target = row_.data(); target != row_.data() + row_.size();
         target += pixelBytes, pixels += 3) {
        target[0] = pixels[2];
        target[1] = pixels[1];
        target[2] = pixels[0];
        target[3] = 0xff;
    }
    ++next_;
    return row_;
}

}  // namespace quillmar
