#include "render/vips/VipsDecoder.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "render/vips/VipsRows.h"

namespace quillmar {

VipsDecoder::VipsDecoder(int descriptor) : descriptor_(descriptor) {
    struct Format {
        std::string_view loader;
        Scaling scaling;
    };
    // What is not listed is left alone, even where the library could read it: tables, raw data, documents.
    static constexpr std::array formats{
        Format{"VipsForeignLoadJpegSource", Scaling::divisor},
        Format{"VipsForeignLoadWebpSource", Scaling::fraction},
        Format{"VipsForeignLoadTiffSource", Scaling::none},
        Format{"VipsForeignLoadHeifSource", Scaling::none},
        Format{"VipsForeignLoadNsgifSource", Scaling::none},
        Format{"VipsForeignLoadSvgSource", Scaling::vector},
    };
    try {
        ::lseek(descriptor_, 0, SEEK_SET);
        const auto source = Ref<VipsSource>::adopt(vips_source_new_from_descriptor(descriptor_));
        const char* loader = source ? vips_foreign_find_load_source(source.get()) : nullptr;
        const auto* format =
            std::ranges::find(formats, std::string_view(loader ? loader : ""), &Format::loader);
        if (format == formats.end()) {
            vips_error_clear();
            throw PictureDecodingError("This is no picture of a known format.");
        }
        scaling_ = format->scaling;
        image_ = load();
        size_ = {vips_image_get_width(image_.get()), vips_image_get_height(image_.get())};
        checkPictureSize(size_.width, size_.height);
        orientation_ = vips_image_get_orientation(image_.get());
    } catch (...) {
        ::close(descriptor_);
        throw;
    }
}

VipsDecoder::~VipsDecoder() { ::close(descriptor_); }

PixelGrid VipsDecoder::chooseGrid(std::int64_t width, std::int64_t height) {
    const double needed =
        std::max(static_cast<double>(width) / size_.width, static_cast<double>(height) / size_.height);
    if (scaling_ == Scaling::vector && needed != 1) return loadScaled(needed);
    double scale = 1;
    if (scaling_ == Scaling::divisor || scaling_ == Scaling::fraction)
        while (scale > 0.125 && scale / 2 >= needed) scale /= 2;
    if (scale != 1) return loadScaled(scale);
    return {size_.width, size_.height, static_cast<double>(size_.width), static_cast<double>(size_.height)};
}

std::unique_ptr<RowSource> VipsDecoder::rows(const GridRegion& region, RgbColor background) {
    return std::make_unique<VipsRows>(std::move(image_), region, background);
}

Ref<VipsImage> VipsDecoder::load(const char* option, double value) const {
    ::lseek(descriptor_, 0, SEEK_SET);
    const auto source = Ref<VipsSource>::adopt(vips_source_new_from_descriptor(descriptor_));
    if (!source) throwVipsError();
    const auto open = [&](auto... scaling) {
        return vips_image_new_from_source(source.get(), "", "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                          VIPS_FAIL_ON_ERROR, scaling..., nullptr);
    };
    const char* const end = nullptr;
    auto image = Ref<VipsImage>::adopt(scaling_ == Scaling::divisor && option
                                           ? open(option, static_cast<int>(value), end)
                                           : open(option, value, end));
    if (!image) throwVipsError();
    return image;
}

PixelGrid VipsDecoder::loadScaled(double scale) {
    image_ = {};  // both would read through the one position of the file
    image_ = scaling_ == Scaling::divisor ? load("shrink", std::round(1 / scale)) : load("scale", scale);
    const int width = vips_image_get_width(image_.get());
    const int height = vips_image_get_height(image_.get());
    checkPictureSize(width, height);
    // A JPEG's last sample may stand for a fraction; the other formats are scaled to whole ones.
    const auto exact = [&](int full, int scaled) {
        const double length = full * scale;
        return scaling_ == Scaling::divisor && std::ceil(length) == scaled ? length : scaled;
    };
    return {width, height, exact(size_.width, width), exact(size_.height, height)};
}

}  // namespace quillmar
