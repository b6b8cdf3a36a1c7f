#include "PhotoSamples.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>

#include <jpeglib.h>

namespace quillmar {
namespace {

std::uint32_t mixed(std::uint32_t value) {
    value = (value ^ (value >> 16)) * 0x7feb352du;
    value = (value ^ (value >> 15)) * 0x846ca68bu;
    return value ^ (value >> 16);
}

/// One octave along one row: smooth values in [-1, 1] between lattice points that are `cell` pixels apart.
void addOctave(std::vector<float>& row, int y, int cell, float strength, std::uint32_t seed) {
    const auto lattice = [&](int x, int line) {
        const std::uint32_t hash = mixed(static_cast<std::uint32_t>(x) * 0x9e3779b9u +
                                         mixed(static_cast<std::uint32_t>(line) + seed));
        return static_cast<float>(hash) * (2.0f / 4294967296.0f) - 1;
    };
    const auto smooth = [](float t) { return t * t * (3 - 2 * t); };
    const int line = y / cell;
    const float down = smooth(static_cast<float>(y % cell) / static_cast<float>(cell));
    const auto column = [&](int x) { return lattice(x, line) * (1 - down) + lattice(x, line + 1) * down; };
    float left = 0;
    float right = column(0);
    for (std::size_t x = 0; x < row.size(); ++x) {
        const int within = static_cast<int>(x) % cell;
        if (within == 0) {
            left = right;
            right = column(static_cast<int>(x) / cell + 1);
        }
        const float across = smooth(static_cast<float>(within) / static_cast<float>(cell));
        row[x] += strength * (left * (1 - across) + right * across);
    }
}

struct File {
    File(const std::filesystem::path& path, const char* mode) : handle(std::fopen(path.c_str(), mode)) {
        if (!handle) throw std::runtime_error(path.string());
    }
    ~File() { std::fclose(handle); }
    std::FILE* handle;
};

}  // namespace

Photo::Photo(int width, int height)
    : width_(width),
      height_(height),
      rgb_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3) {
    struct Octave {
        int cell;
        float strength;
    };
    constexpr std::array octaves{Octave{1500, 60}, Octave{400, 35}, Octave{90, 22}, Octave{24, 12},
                                 Octave{7, 9},     Octave{2, 6},    Octave{1, 6}};
    std::uint8_t* pixel = rgb_.data();
    for (int y = 0; y < height; ++y) {
        std::array<std::vector<float>, 3> channels;
        std::vector<float> luma(static_cast<std::size_t>(width), 120);
        for (std::size_t i = 0; i < octaves.size(); ++i)
            addOctave(luma, y, octaves[i].cell, octaves[i].strength, static_cast<std::uint32_t>(i));
        for (std::size_t c = 0; c < 3; ++c) {
            channels[c] = luma;
            addOctave(channels[c], y, 700, 30, static_cast<std::uint32_t>(100 + c));
            addOctave(channels[c], y, 40, 8, static_cast<std::uint32_t>(200 + c));
        }
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x)
            for (const auto& channel : channels)
                *pixel++ = static_cast<std::uint8_t>(std::fmin(std::fmax(channel[x], 0), 255));
    }
}

void Photo::saveJpeg(const std::filesystem::path& path, int sampling, bool isProgressive) const {
    const File file(path, "wb");
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file.handle);
    jpeg.image_width = static_cast<JDIMENSION>(width_);
    jpeg.image_height = static_cast<JDIMENSION>(height_);
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 92, TRUE);
    jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = sampling;
    if (isProgressive) jpeg_simple_progression(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        auto* row = const_cast<std::uint8_t*>(&rgb_[std::size_t{jpeg.next_scanline} * jpeg.image_width * 3]);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
}

DecodedJpeg decodeJpeg(const std::filesystem::path& path, unsigned eighths, bool keepsPixels) {
    const File file(path, "rb");
    jpeg_error_mgr errors;
    jpeg_decompress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file.handle);
    jpeg_read_header(&jpeg, TRUE);
    jpeg.scale_num = eighths;
    jpeg.scale_denom = 8;
    jpeg.out_color_space = JCS_EXT_RGBX;
    jpeg_start_decompress(&jpeg);
    DecodedJpeg result{static_cast<int>(jpeg.output_width), static_cast<int>(jpeg.output_height), {}};
    const std::size_t rowBytes = std::size_t{jpeg.output_width} * 4;
    result.rgbx.resize(rowBytes * (keepsPixels ? jpeg.output_height : 1));
    while (jpeg.output_scanline < jpeg.output_height) {
        std::uint8_t* row = &result.rgbx[keepsPixels ? jpeg.output_scanline * rowBytes : 0];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return result;
}

}  // namespace quillmar
