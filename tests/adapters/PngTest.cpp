#include <gmock/gmock.h>
#include <png.h>

#include <fstream>

#include "fakes/TemporaryFolder.h"
#include "linux/picture/LinuxPictureRendering.h"
#include "linux/picture/PngEncoder.h"
#include "linux/picture/PngReader.h"

namespace quillmar {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

struct Decoded {
    unsigned width = 0;
    unsigned height = 0;
    Bytes rgb;
};

/// Through libpng's own simple reader, which checks every checksum.
Decoded decoded(const Bytes& file) {
    png_image image{.version = PNG_IMAGE_VERSION};
    EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size())) << image.message;
    image.format = PNG_FORMAT_RGB;
    Decoded result{image.width, image.height, Bytes(PNG_IMAGE_SIZE(image))};
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, result.rgb.data(), 0, nullptr)) << image.message;
    EXPECT_EQ(image.warning_or_error, 0u) << image.message;
    return result;
}

Bytes noise(std::size_t count) {
    Bytes bytes(count);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

Bytes encoded(int width, int height, std::span<const std::uint8_t> rgb) {
    MemoryOutput output;
    PngEncoder encoder(width, height, output);
    const std::size_t row = static_cast<std::size_t>(width) * 3;
    for (; !rgb.empty(); rgb = rgb.subspan(row)) encoder.writeRow(rgb.first(row));
    encoder.finish();
    return output.bytes;
}

TEST(PngEncoderTest, whatItWritesReadsBackToTheLastPixel) {
    // The last is larger than any buffer and does not shrink.
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 2}, {23334, 3}, {1, 3000}, {1000, 900}}) {
        SCOPED_TRACE(width);
        const Bytes rgb = noise(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
        const Decoded back = decoded(encoded(width, height, rgb));
        EXPECT_EQ(back.width, static_cast<unsigned>(width));
        EXPECT_EQ(back.height, static_cast<unsigned>(height));
        EXPECT_EQ(back.rgb, rgb);
    }
}

TEST(PngEncoderTest, aRepeatedRowIsTheRowAboveIt) {
    const Bytes first = noise(30);
    const Bytes last(30, 7);
    MemoryOutput output;
    PngEncoder encoder(10, 30003, output);
    encoder.writeRow(first);
    encoder.repeatRow(30001);
    encoder.writeRow(last);
    encoder.finish();
    const Decoded back = decoded(output.bytes);
    const std::span rows(back.rgb);
    for (std::size_t y = 0; y + 1 < back.height; ++y) {
        ASSERT_TRUE(std::ranges::equal(rows.subspan(y * 30, 30), first)) << y;
    }
    EXPECT_THAT(rows.last(30), Each(7));
}

TEST(PngEncoderTest, anIncompletePictureIsNotHandedOut) {
    MemoryOutput output;
    PngEncoder encoder(2, 2, output);
    encoder.writeRow(Bytes(6));
    EXPECT_THROW(encoder.finish(), std::runtime_error);
    EXPECT_THROW(encoder.repeatRow(2), std::logic_error);
    EXPECT_THROW(encoder.writeRow(Bytes(5)), std::logic_error);
}

TEST(LinuxPictureRenderingTest, aSolidPictureHasItsColourInEveryPixel) {
    const LinuxPictureRendering rendering;
    const Decoded back = decoded(rendering.solidColorPng(641, 367, {1, 2, 250}));
    EXPECT_EQ(back.width, 641u);
    EXPECT_EQ(back.height, 367u);
    for (std::size_t i = 0; i < back.rgb.size(); i += 3) {
        ASSERT_THAT(std::span(back.rgb).subspan(i, 3), ElementsAre(1, 2, 250)) << i;
    }
    EXPECT_EQ(decoded(rendering.solidColorPng(1, 1, {9, 8, 7})).rgb, (Bytes{9, 8, 7}));
    for (const auto& [width, height] : {std::pair{0, 1}, {1, 0}, {-1, 1}, {32769, 1}, {1, 32769}}) {
        EXPECT_THROW(rendering.solidColorPng(width, height, {}), std::runtime_error);
    }
}

class PngReaderTest : public testing::Test {
protected:
    std::filesystem::path save(std::span<const std::uint8_t> bytes) {
        const auto file = folder_.path() / "picture.png";
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return file;
    }
    /// Writes a PNG of another kind than the program's own: 2 by 2 pixels with these samples.
    std::filesystem::path saveKind(int colorType, int depth, int interlace, std::vector<Bytes> rows) {
        const auto file = folder_.path() / "kind.png";
        std::FILE* out = std::fopen(file.c_str(), "wb");
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, out);
        png_set_IHDR(png, info, 2, 2, depth, colorType, interlace, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        const png_color palette[] = {{10, 20, 30}, {200, 100, 50}};
        if (colorType == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 2);
        std::vector<png_bytep> pointers;
        for (Bytes& row : rows) pointers.push_back(row.data());
        png_set_rows(png, info, pointers.data());
        png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        png_destroy_write_struct(&png, &info);
        std::fclose(out);
        return file;
    }
    static Bytes allPixels(const std::filesystem::path& file,
                           PngReader::PixelOrder order = PngReader::PixelOrder::redGreenBlueUnused) {
        PngReader reader(file, order);
        const std::size_t row = static_cast<std::size_t>(reader.width()) * 4;
        Bytes pixels(row * static_cast<std::size_t>(reader.height()));
        for (std::size_t at = 0; at < pixels.size(); at += row)
            reader.readRow(std::span(pixels).subspan(at, row));
        return pixels;
    }
    static std::string failureOf(const std::filesystem::path& file) {
        try {
            allPixels(file);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no failure";
    }

    TemporaryFolder folder_;
};

TEST_F(PngReaderTest, everyKindOfPictureComesOutAsOpaquePixels) {
    struct Kind {
        int colorType;
        int depth;
        std::vector<Bytes> rows;
        Bytes first;
        Bytes last;
    };
    const Kind kinds[] = {
        {PNG_COLOR_TYPE_RGB, 8, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}, {1, 2, 3}, {10, 11, 12}},
        {PNG_COLOR_TYPE_RGB, 16, {Bytes(12, 0x40), Bytes(12, 0xff)}, {0x40, 0x40, 0x40}, {255, 255, 255}},
        {PNG_COLOR_TYPE_GRAY, 1, {{0x40}, {0x80}}, {0, 0, 0}, {0, 0, 0}},
        {PNG_COLOR_TYPE_PALETTE, 8, {{0, 1}, {0, 1}}, {10, 20, 30}, {200, 100, 50}},
        {PNG_COLOR_TYPE_RGB_ALPHA,
         8,
         {{9, 9, 9, 255, 9, 9, 9, 9}, {9, 9, 9, 9, 200, 100, 50, 0}},
         {9, 9, 9},
         {0, 0, 0}},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 8, {{9, 255, 9, 9}, {9, 9, 70, 255}}, {9, 9, 9}, {70, 70, 70}},
    };
    for (const Kind& kind : kinds) {
        for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
            SCOPED_TRACE(testing::Message() << "type " << kind.colorType << " depth " << kind.depth);
            const Bytes pixels = allPixels(saveKind(kind.colorType, kind.depth, interlace, kind.rows));
            ASSERT_EQ(pixels.size(), 16u);
            EXPECT_TRUE(std::ranges::equal(std::span(pixels).first(3), kind.first))
                << testing::PrintToString(pixels);
            EXPECT_TRUE(std::ranges::equal(std::span(pixels).subspan(12, 3), kind.last))
                << testing::PrintToString(pixels);
            EXPECT_EQ(pixels[3], 0xff);
        }
    }
}

TEST_F(PngReaderTest, theOrderOfTheBytesIsTheCallersChoice) {
    const auto file = save(encoded(1, 1, Bytes{1, 2, 3}));
    EXPECT_THAT(allPixels(file, PngReader::PixelOrder::blueGreenRedUnused), ElementsAre(3, 2, 1, 0xff));
}

TEST_F(PngReaderTest, aBadFileFailsWithItsPathAndTheReason) {
    const Bytes whole = encoded(100, 100, noise(30000));
    Bytes damaged = whole;
    damaged[damaged.size() / 2] ^= 0xff;
    Bytes huge = whole;
    huge[16] = 0x7f;
    EXPECT_THAT(failureOf(folder_.path() / "missing.png"),
                HasSubstr("missing.png: No such file or directory"));
    EXPECT_THAT(failureOf(save({})), HasSubstr("picture.png: "));
    EXPECT_THAT(failureOf(save(asBytes("GIF89a, not what it says"))), HasSubstr("Not a PNG file"));
    EXPECT_THAT(failureOf(save(std::span(whole).first(whole.size() / 2))), HasSubstr("picture.png: "));
    EXPECT_THAT(failureOf(save(damaged)), HasSubstr("picture.png: "));
    EXPECT_THAT(failureOf(save(huge)), HasSubstr("picture.png: "));
    EXPECT_THAT(failureOf(folder_.path()), HasSubstr(folder_.path().string()));
}

}  // namespace
}  // namespace quillmar
