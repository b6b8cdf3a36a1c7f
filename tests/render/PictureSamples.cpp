#include "PictureSamples.h"

#include "base/Files.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <jpeglib.h>
#include <png.h>

namespace quillmar::samples {

Rgb::Rgb(int w, int h, const std::function<RgbColor(int x, int y)>& colorAt) : width(w), height(h) {
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const RgbColor color = colorAt(x, y);
            bytes.insert(bytes.end(), {color.red, color.green, color.blue});
        }
    }
}

RgbColor Rgb::at(int x, int y) const {
    const std::uint8_t* pixel = &bytes.at(static_cast<std::size_t>(y * width + x) * 3);
    return {pixel[0], pixel[1], pixel[2]};
}

RgbColor quadrant(int x, int y, int width, int height) {
    const bool isRight = x >= width / 2;
    if (y < height / 2) return isRight ? RgbColor{20, 200, 30} : RgbColor{230, 20, 20};
    return isRight ? RgbColor{240, 220, 40} : RgbColor{30, 40, 220};
}

Rgb patterned(int width, int height) {
    return {width, height, [=](int x, int y) {
                const double u = static_cast<double>(x) / width;
                const double v = static_cast<double>(y) / height;
                const auto wave = [](double phase) {
                    return static_cast<std::uint8_t>(std::lround(127.5 + 120 * std::sin(phase)));
                };
                const bool isStep = (x / 17 + y / 23) % 5 == 0;
                return RgbColor{wave(60 * u * u + 40 * v), isStep ? std::uint8_t{240} : wave(90 * v * v),
                                wave(200 * u * v)};
            }};
}

namespace {

Bytes exif(const JpegOptions& options) {
    const auto orientation = static_cast<std::uint8_t>(options.orientation);
    Bytes bytes{'E', 'x', 'i', 'f', 0, 0};
    if (options.isBigEndian) {
        bytes.insert(bytes.end(), {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0});
        bytes.insert(bytes.end(), {orientation, 0, 0, 0, 0, 0, 0});
    } else {
        bytes.insert(bytes.end(), {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0});
        bytes.insert(bytes.end(), {orientation, 0, 0, 0, 0, 0, 0, 0});
    }
    return bytes;
}

Bytes cmykRow(std::span<const std::uint8_t> rgb) {
    Bytes row;  // stored the other way round, as is usual
    for (std::size_t i = 0; i < rgb.size(); i += 3)
        row.insert(row.end(), {rgb[i], rgb[i + 1], rgb[i + 2], 255});
    return row;
}

}  // namespace

Bytes jpeg(const Rgb& picture, const JpegOptions& options) {
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = static_cast<JDIMENSION>(picture.width);
    jpeg.image_height = static_cast<JDIMENSION>(picture.height);
    jpeg.input_components = options.isCmyk ? 4 : 3;
    jpeg.in_color_space = options.isCmyk ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&jpeg);
    if (options.isGrey) jpeg_set_colorspace(&jpeg, JCS_GRAYSCALE);
    jpeg_set_quality(&jpeg, options.quality, TRUE);
    const int sampling = options.hasHalfColors ? 2 : 1;
    jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = sampling;
    if (options.isProgressive) jpeg_simple_progression(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    if (options.orientation != 0) {
        const Bytes data = exif(options);
        jpeg_write_marker(&jpeg, JPEG_APP0 + 1, data.data(), static_cast<unsigned>(data.size()));
    }
    if (!options.profile.empty())
        jpeg_write_icc_profile(&jpeg, options.profile.data(), static_cast<unsigned>(options.profile.size()));
    for (int y = 0; y < picture.height; ++y) {
        const auto bytes = static_cast<std::size_t>(picture.width) * 3;
        const std::span rgb = std::span(picture.bytes).subspan(static_cast<std::size_t>(y) * bytes, bytes);
        Bytes row = options.isCmyk ? cmykRow(rgb) : Bytes(rgb.begin(), rgb.end());
        JSAMPROW pointer = row.data();
        jpeg_write_scanlines(&jpeg, &pointer, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    Bytes file(memory, memory + size);
    std::free(memory);
    return file;
}

Bytes png(const Rgb& picture, const PngOptions& options) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const auto append = [](png_structp writer, png_bytep bytes, std::size_t count) {
        auto* target = static_cast<Bytes*>(png_get_io_ptr(writer));
        target->insert(target->end(), bytes, bytes + count);
    };
    png_set_write_fn(png, &file, append, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 options.depth, options.alphaAt ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!options.profile.empty())
        png_set_iCCP(png, info, "wide", PNG_COMPRESSION_TYPE_BASE, options.profile.data(),
                     static_cast<png_uint_32>(options.profile.size()));
    png_write_info(png, info);
    for (int y = 0; y < picture.height; ++y) {
        Bytes row;
        const auto put = [&](std::uint8_t sample) {
            row.insert(row.end(), static_cast<std::size_t>(options.depth / 8), sample);
        };
        for (int x = 0; x < picture.width; ++x) {
            const RgbColor color = picture.at(x, y);
            for (const std::uint8_t sample : {color.red, color.green, color.blue}) put(sample);
            if (options.alphaAt) put(options.alphaAt(x, y));
        }
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes file(const char* name) {
    const std::string content = readFile(std::filesystem::path(QUILLMAR_PICTURE_SAMPLES) / name, 1 << 20);
    return {content.begin(), content.end()};
}

Rgb readPng(const std::filesystem::path& file) {
    png_image image{.version = PNG_IMAGE_VERSION};
    if (!png_image_begin_read_from_file(&image, file.c_str())) throw std::runtime_error(image.message);
    image.format = PNG_FORMAT_RGB;
    Rgb result;
    result.width = static_cast<int>(image.width);
    result.height = static_cast<int>(image.height);
    result.bytes.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, result.bytes.data(), 0, nullptr))
        throw std::runtime_error(image.message);
    return result;
}

Rgb rgbOf(const PixelBuffer& pixels) {
    return {pixels.size().width, pixels.size().height, [&](int x, int y) {
                const auto pixel =
                    pixels.row(y).subspan(static_cast<std::size_t>(x) * PixelBuffer::pixelBytes);
                return RgbColor{pixel[2], pixel[1], pixel[0]};
            }};
}

}  // namespace quillmar::samples
