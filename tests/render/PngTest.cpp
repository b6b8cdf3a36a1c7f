#include <png.h>

#include "PictureFixture.h"
#include "base/Files.h"
#include "linux/picture/LinuxPictureEncoding.h"
#include "linux/picture/PngEncoder.h"

namespace quillmar {
namespace {

using samples::Rgb;

Bytes noise(std::size_t count) {
    Bytes bytes(count);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

Rgb noisy(int width, int height) {
    Rgb picture;
    picture.width = width;
    picture.height = height;
    picture.bytes = noise(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    return picture;
}

struct PngTest : PictureFixture {
    LinuxPictureEncoding encoding;
    std::filesystem::path target = folder.path() / "canvas.png";

    static SharedPixels pixelsOf(const Rgb& picture) {
        auto pixels = std::make_shared<PixelBuffer>(PixelSize{picture.width, picture.height});
        const std::span bytes = pixels->bytes();
        for (std::size_t i = 0; i < picture.bytes.size(); ++i)
            bytes[i / 3 * 4 + 2 - i % 3] = picture.bytes[i];
        return pixels;
    }
    /// Empty when the file is no PNG of that size.
    Bytes loaded(const std::filesystem::path& file, PixelSize size) {
        const SharedPixels pixels = awaited(rendering.load(file, size));
        return pixels ? samples::rgbOf(*pixels).bytes : Bytes();
    }
    /// A PNG of 2 by 2 pixels with these samples.
    std::filesystem::path saveKind(int colorType, int depth, int interlace, std::vector<Bytes> rows) {
        const auto file = folder.path() / "kind.png";
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
};

TEST_F(PngTest, whatIsWrittenReadsBackToTheLastPixel) {
    // The third is larger than any buffer and does not shrink.
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 2}, {23334, 3}, {1, 3000}, {1000, 900}}) {
        SCOPED_TRACE(width);
        const Rgb picture = noisy(width, height);
        encoding.writePng(*pixelsOf(picture), target);
        EXPECT_EQ(samples::readPng(target).bytes, picture.bytes) << "by a foreign decoder";
        EXPECT_EQ(loaded(target, {width, height}), picture.bytes);
    }
}

TEST_F(PngTest, rowsLikeTheOneAboveComeBackToo) {
    PixelBuffer pixels({200, 3000});
    pixels.fill({1, 2, 250});
    std::ranges::fill(pixels.row(1500), 7);
    encoding.writePng(pixels, target);
    EXPECT_EQ(samples::readPng(target).bytes, samples::rgbOf(pixels).bytes);
    EXPECT_EQ(loaded(target, pixels.size()), samples::rgbOf(pixels).bytes);
}

TEST_F(PngTest, anIncompletePictureIsNotHandedOut) {
    MemoryOutput output;
    PngEncoder encoder(2, 2, output);
    encoder.writeRow(Bytes(6));
    EXPECT_THROW(encoder.finish(), std::runtime_error);
    EXPECT_THROW(encoder.repeatRow(2), std::logic_error);
    EXPECT_THROW(encoder.writeRow(Bytes(5)), std::logic_error);
    EXPECT_THROW(encoder.writePixels(Bytes(7)), std::logic_error);
}

TEST_F(PngTest, aPictureThatCannotBeWrittenSaysWhyAndLeavesNothing) {
    const PixelBuffer pixels({9, 7});
    try {
        encoding.writePng(pixels, folder.path() / "missing" / "canvas.png");
        FAIL() << "must be refused";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(PngTest, everyKindOfPictureIsDrawnAndLoaded) {
    struct Kind {
        int colorType;
        int depth;
        std::vector<Bytes> rows;
        RgbColor first;
        RgbColor last;
        bool isTransparent = false;  ///< at its last pixel
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
         {},
         true},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 8, {{9, 255, 9, 9}, {9, 9, 70, 255}}, {9, 9, 9}, {70, 70, 70}},
    };
    for (const Kind& kind : kinds) {
        for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7}) {
            SCOPED_TRACE(testing::Message() << "type " << kind.colorType << " depth " << kind.depth);
            const auto file = saveKind(kind.colorType, kind.depth, interlace, kind.rows);
            const Rgb drawn = render(file, {{2, 2}, background, {0, 0, 2, 2}, false, {}});
            EXPECT_EQ(drawn.at(0, 0), kind.first);
            EXPECT_EQ(drawn.at(1, 1), kind.isTransparent ? background : kind.last);
            const Bytes pixels = loaded(file, {2, 2});
            ASSERT_EQ(pixels.size(), 12u);
            EXPECT_EQ((RgbColor{pixels[9], pixels[10], pixels[11]}), kind.last);
        }
    }
}

TEST_F(PngTest, aDamagedFileAndOneOfAnotherSizeAreNotLoaded) {
    const Rgb picture = noisy(100, 100);
    encoding.writePng(*pixelsOf(picture), target);
    const std::string text = readFile(target, 1 << 20);
    const Bytes whole(text.begin(), text.end());
    const auto changed = [&](std::size_t at, std::uint8_t by) {
        Bytes bytes = whole;
        bytes.at(at) ^= by;
        return save(bytes, "changed.png");
    };
    const PixelSize size{100, 100};
    EXPECT_EQ(loaded(target, size), picture.bytes);
    EXPECT_EQ(loaded(target, {100, 99}), Bytes());
    EXPECT_EQ(loaded(target, {50, 200}), Bytes());
    EXPECT_EQ(loaded(folder.path() / "missing.png", size), Bytes());
    EXPECT_EQ(loaded(save({}), size), Bytes());
    EXPECT_EQ(loaded(changed(16, 0x7f), size), Bytes()) << "its width";
    EXPECT_EQ(loaded(changed(whole.size() / 2, 0xff), size), Bytes()) << "a pixel";
    EXPECT_EQ(loaded(changed(whole.size() - 17, 1), size), Bytes()) << "the checksum of the pixels";
    EXPECT_EQ(loaded(save(Bytes(whole.begin(), whole.end() - 5000)), size), Bytes()) << "cut off";
    Bytes longer = whole;
    longer.push_back(0);
    EXPECT_EQ(loaded(save(longer), size), picture.bytes) << "as any reader of PNG files takes it";
}

}  // namespace
}  // namespace quillmar
