#include <sys/stat.h>

#include <map>

#include "PictureFixture.h"
#include "render/JpegMetadata.h"

namespace quillmar {
namespace {

using samples::Rgb;

Rgb quadrants(int width, int height) {
    return {width, height, [=](int x, int y) { return samples::quadrant(x, y, width, height); }};
}
Rgb plain(RgbColor color, int width = 8, int height = 8) {
    return {width, height, [=](int, int) { return color; }};
}
Bytes text(std::string_view characters) { return {characters.begin(), characters.end()}; }

using Case = PictureRenderingError::Case;

struct PictureDecodingTest : PictureFixture {
    /// Why a file is no picture; nothing when it is one.
    std::optional<Case> refusal(const std::filesystem::path& file) {
        const auto reason = failureOf(rendered(file, {{64, 64}, background, {0, 0, 64, 64}, false, {}}));
        EXPECT_EQ(awaited(rendering.isPicture(file)), !reason) << file;
        return reason;
    }
};

TEST_F(PictureDecodingTest, everyOrientationComesOutUpright) {
    // Each row: what quadrants stored as red, green / blue, yellow are to look like.
    const std::map<int, std::string> upright = {{1, "RGBY"}, {2, "GRYB"}, {3, "YBGR"}, {4, "BYRG"},
                                                {5, "RBGY"}, {6, "BRYG"}, {7, "YGBR"}, {8, "GYRB"}};
    for (const auto& [orientation, expected] : upright) {
        for (const bool isBigEndian : {false, true}) {
            SCOPED_TRACE(orientation);
            const Bytes file =
                samples::jpeg(quadrants(48, 32), {.orientation = orientation, .isBigEndian = isBigEndian});
            EXPECT_EQ(corners(stretched(file, 20, 20)), expected);
            EXPECT_EQ(seenSize, orientation < 5 ? (PixelSize{48, 32}) : (PixelSize{32, 48}));
            // The same through the other decoder, which inks ask for.
            const Bytes inks = samples::jpeg(
                quadrants(48, 32), {.orientation = orientation, .isBigEndian = isBigEndian, .isCmyk = true});
            const Rgb small = stretched(inks, 20, 20);
            EXPECT_EQ(seenSize.width, orientation < 5 ? 48 : 32);
            const auto yellow = expected.find('Y');
            EXPECT_THAT(small.at(yellow % 2 ? 15 : 5, yellow > 1 ? 15 : 5),
                        isAbout(RgbColor{240, 220, 40}, 90));
        }
    }
}

TEST_F(PictureDecodingTest, everyFormatShowsItsFirstPicture) {
    const std::map<std::string, Bytes> files = {
        {"PNG", samples::png(quadrants(16, 8))},
        {"16-bit PNG", samples::png(quadrants(16, 8), {.depth = 16})},
        {"JPEG", samples::jpeg(quadrants(16, 8))},
        {"progressive JPEG", samples::jpeg(quadrants(16, 8), {.isProgressive = true})},
        {"CMYK JPEG", samples::jpeg(quadrants(16, 8), {.isCmyk = true})},
        {"WebP", samples::file("quadrants.webp")},
        {"TIFF", samples::file("quadrants.tiff")},
        {"GIF of two frames", samples::file("two-frames.gif")},
        {"AVIF", samples::file("quadrants.avif")},
        {"HEIC", samples::file("quadrants.heic")},
    };
    for (const auto& [name, file] : files) {
        SCOPED_TRACE(name);
        const int tolerance = name == "CMYK JPEG" ? 90 : 8;  // without a profile its inks are anyone's guess
        const Rgb picture = stretched(file, 16, 8);
        EXPECT_EQ(seenSize, (PixelSize{16, 8}));
        EXPECT_THAT(picture.at(2, 1), isAbout(RgbColor{230, 20, 20}, tolerance));
        EXPECT_THAT(picture.at(14, 6), isAbout(RgbColor{240, 220, 40}, tolerance));
    }
}

TEST_F(PictureDecodingTest, vectorsAreDrawnAsLargeAsTheyAreShown) {
    const Bytes file = text(
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="4" height="2"><rect width="2" height="2" fill="#f00"/></svg>)");
    const Rgb picture = stretched(file, 400, 200);
    EXPECT_EQ(seenSize, (PixelSize{4, 2}));
    EXPECT_EQ(picture.at(198, 100), (RgbColor{255, 0, 0}));
    EXPECT_EQ(picture.at(202, 100), background) << "a sharp edge, and what is transparent shows the canvas";
}

/// A bitmap of 40 head bytes, a palette and rows whose length is a multiple of four.
Bytes bitmap(int width, int height, int bits, const Bytes& paletteAndRows, std::uint8_t colors = 0) {
    const auto low = [](int number) { return static_cast<std::uint8_t>(number); };
    const auto high = [](int number) { return static_cast<std::uint8_t>(number >> 8); };
    Bytes file(54);
    std::ranges::copy(asBytes("BM"), file.begin());
    file[10] = low(54 + colors * 4);
    file[14] = 40;
    for (int i = 0; i < 4; ++i) {
        file[static_cast<std::size_t>(18 + i)] = low(width >> (8 * i));
        file[static_cast<std::size_t>(22 + i)] = low(height >> (8 * i));
    }
    file[28] = low(bits);
    file[29] = high(bits);
    file[46] = colors;
    file.insert(file.end(), paletteAndRows.begin(), paletteAndRows.end());
    return file;
}

TEST_F(PictureDecodingTest, bitmapsStandOnTheirHeadUnlessTheyAreNegative) {
    const Bytes rows{1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
    const Rgb picture = stretched(bitmap(2, 2, 24, rows), 2, 2);
    EXPECT_EQ(picture.at(0, 0), (RgbColor{9, 8, 7}));
    EXPECT_EQ(picture.at(1, 1), (RgbColor{6, 5, 4}));
    EXPECT_EQ(stretched(bitmap(2, -2, 24, rows), 2, 2).at(1, 1), (RgbColor{12, 11, 10}));
    const Bytes paletteAndRow{1, 1, 1, 0, 2, 2, 2, 0, 0xa0, 0, 0, 0};
    EXPECT_EQ(stretched(bitmap(3, 1, 1, paletteAndRow, 2), 3, 1).bytes, (Bytes{2, 2, 2, 1, 1, 1, 2, 2, 2}));
    const Bytes index{9, 9, 9, 0, 0x0f, 0, 0, 0};
    EXPECT_EQ(stretched(bitmap(2, 1, 4, index, 1), 2, 1).bytes, (Bytes{9, 9, 9, 0, 0, 0}))
        << "a colour that the palette does not have";
    EXPECT_EQ(refusal(save(bitmap(2, 3, 24, rows))), Case::unreadable);
    EXPECT_EQ(refusal(save(bitmap(60000, 60000, 24, rows))), Case::tooLarge);
    EXPECT_EQ(refusal(save(bitmap(2, 2, 16, rows))), Case::unreadable);
}

TEST_F(PictureDecodingTest, coloursComeOutAsTheirProfileMeansThem) {
    const Rgb picture = plain({200, 100, 50});
    const Bytes profile = samples::file("display-p3.icc");
    const RgbColor converted{215, 93, 31};
    EXPECT_THAT(stretched(samples::png(picture, {.profile = profile}), 8, 8).at(4, 4), isAbout(converted, 2));
    EXPECT_THAT(stretched(samples::png(picture, {.depth = 16, .profile = profile}), 8, 8).at(4, 4),
                isAbout(converted, 2));
    EXPECT_THAT(stretched(samples::jpeg(picture, {.profile = profile}), 8, 8).at(4, 4),
                isAbout(converted, 4));
    EXPECT_THAT(stretched(samples::jpeg(picture, {.profile = Bytes(300, 7)}), 8, 8).at(4, 4),
                isAbout(RgbColor{200, 100, 50}, 3))
        << "a profile that is none leaves the pixels as they are";
    EXPECT_THAT(
        stretched(samples::png(picture, {.alphaAt = [](int, int) { return 255; }, .profile = profile}), 8, 8)
            .at(4, 4),
        isAbout(converted, 2));
    const RgbColor grey = stretched(samples::jpeg(picture, {.isGrey = true}), 8, 8).at(4, 4);
    EXPECT_THAT(grey, isAbout(RgbColor{124, 124, 124}, 2));
}

TEST_F(PictureDecodingTest, whatIsTransparentLiesOnTheBackground) {
    for (const int depth : {8, 16}) {
        const Bytes file =
            samples::png(plain({0, 100, 0}), {.depth = depth, .alphaAt = [](int x, int) {
                                                  return static_cast<std::uint8_t>(x < 4 ? 0 : x * 32);
                                              }});
        const Rgb picture = stretched(file, 8, 8);
        EXPECT_EQ(picture.at(0, 0), background);
        EXPECT_THAT(picture.at(4, 0), isAbout(RgbColor{100, 50, 100}, 1));
        EXPECT_THAT(picture.at(7, 7), isAbout(RgbColor{24, 88, 24}, 1));
    }
}

TEST_F(PictureDecodingTest, aFileThatIsNoWholePictureIsRefused) {
    const Bytes jpeg = samples::jpeg(samples::patterned(200, 150));
    const Bytes progressive = samples::jpeg(samples::patterned(200, 150), {.isProgressive = true});
    const Bytes png = samples::png(samples::patterned(200, 150));
    const auto half = [](const Bytes& file) {
        return Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2));
    };
    const auto damaged = [](Bytes file, std::size_t at, Bytes with) {
        std::ranges::copy(with, file.begin() + static_cast<std::ptrdiff_t>(at));
        return file;
    };
    const std::size_t frame = 163;  // of a JPEG's frame header, behind its two tables
    ASSERT_EQ(jpeg.at(frame - 5), 0xff);
    const std::map<std::string, Bytes> files = {
        {"empty", {}},
        {"page.jpg", text("<!DOCTYPE html><html><body>404</body></html>")},
        {"matrix.png", text("2 2\n1 2\n3 4\n")},
        {"script.svg", text("<svg")},
        {"start.jpg", {0xff, 0xd8, 0xff}},
        {"half.jpg", half(jpeg)},
        {"half-progressive.jpg", half(progressive)},
        {"half.png", half(png)},
        {"half.webp", half(samples::file("quadrants.webp"))},
        {"half.heic", half(samples::file("quadrants.heic"))},
        {"damaged.jpg", damaged(jpeg, jpeg.size() / 2, {0xff, 0xd9, 0xff, 0xd9})},
        {"bomb.jpg", damaged(jpeg, frame, {0xea, 0x60, 0xea, 0x60})},
        {"bomb.png",
         damaged(png, 16, {0, 0, 0xea, 0x60, 0, 0, 0xea, 0x60, 8, 2, 0, 0, 0, 0x0f, 0xb0, 0xe2, 0x15})},
        {"bomb.svg", text(R"(<svg xmlns="http://www.w3.org/2000/svg" width="60000" height="60000"/>)")},
    };
    for (const auto& [name, bytes] : files) {
        const auto expected = name.starts_with("bomb") ? Case::tooLarge : Case::unreadable;
        EXPECT_EQ(refusal(save(bytes, name.c_str())), expected) << name;
    }
}

TEST_F(PictureDecodingTest, whatIsNoFileIsRefusedWithoutWaitingForIt) {
    const auto pipe = folder.path() / "pipe.jpg";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::filesystem::path& file :
         {pipe, folder.path(), std::filesystem::path("/dev/zero"), folder.path() / "missing.jpg"})
        EXPECT_EQ(refusal(file), Case::unreadable) << file;
}

TEST(JpegMetadataTest, damagedExifDataAsksForNothing) {
    using namespace std::string_view_literals;
    const auto orientation = [](std::string_view data) { return exifOrientation(asBytes(data)); };
    EXPECT_EQ(orientation("Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x06\0"sv), 6);
    EXPECT_EQ(orientation("Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x06"sv), 1);
    EXPECT_EQ(orientation("Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x09\0"sv), 1);
    EXPECT_EQ(orientation("Exif\0\0II*\0\xff\xff\xff\xff\x01\0"sv), 1);
    EXPECT_EQ(orientation("Exif\0\0II*\0\x08\0\0\0\xff\xff"sv), 1);
    EXPECT_EQ(orientation("Exif\0\0XX"sv), 1);
    EXPECT_EQ(orientation(""sv), 1);
}

}  // namespace
}  // namespace quillmar
