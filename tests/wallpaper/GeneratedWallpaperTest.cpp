#include "wallpaper/GeneratedWallpaper.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <fstream>
#include <limits>

#include "base/Hash.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

DisplayInfo display(double width, double height, double scale) {
    return {.id = "display:aa-01", .frame = {0, 0, width, height}, .scaleFactor = scale};
}

TEST(CanvasSizeTest, aCanvasIsTheFrameInPixelsAndNeverEmpty) {
    EXPECT_EQ(canvasSize(display(1920, 1080, 2)), (PixelSize{3840, 2160}));
    EXPECT_EQ(canvasSize(display(1920, 1080, 0.5)), (PixelSize{1920, 1080}));
    EXPECT_EQ(canvasSize(display(100.3, 100.5, 1.25)), (PixelSize{125, 126}));
    EXPECT_EQ(canvasSize(display(0, -5, 1)), (PixelSize{1, 1}));
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(canvasSize(display(infinity, std::nan(""), 1)), (PixelSize{1, 1}));
    EXPECT_EQ(canvasSize(display(1e12, 10, 1)).width, 32768);
}

TEST(ImageFileNameTest, theNameHoldsAllThatThePictureDependsOn) {
    const auto name = [](ImagePresentationLayout layout, const char* background) {
        return imageFileName(display(1, 1, 1), {1920, 1080}, layout, background, "c0ffee");
    };
    EXPECT_EQ(name(ImagePresentationLayout::fill, "1F6F8B"),
              "image-v2-display-aa-01-1920x1080-fill-1F6F8B-c0ffee.png");
    EXPECT_EQ(name(ImagePresentationLayout::center, "NO COLOUR"),
              "image-v2-display-aa-01-1920x1080-center-NO COLOUR-c0ffee.png");
    EXPECT_EQ(name(ImagePresentationLayout::tile, "../X"),
              "image-v2-display-aa-01-1920x1080-tile-..-X-c0ffee.png");
    constexpr std::size_t longestName = 255 - 8;  // a file that is not whole yet has eight bytes more
    EXPECT_LE(name(ImagePresentationLayout::tile, std::string(300, 'X').c_str()).size(), longestName);
}

TEST(ImageFingerprintTest, itFollowsPathTimeSizeAndCaption) {
    TemporaryFolder folder;
    const auto file = folder.path() / "a.jpg";
    std::ofstream(file) << "12345";
    const auto changedAt = [&](time_t seconds, long nanoseconds) {
        const timespec times[] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    };
    const auto expected = [&](const std::string& timeSizeAndCaption) {
        return hexadecimal(fnv1a64(file.string() + timeSizeAndCaption));
    };
    changedAt(1'700'000'000, 0);
    EXPECT_EQ(imageFingerprint(file, ""), expected("|1700000000.0|5|"));
    EXPECT_EQ(imageFingerprint(folder.path() / "." / "a.jpg", "Río"), expected("|1700000000.0|5|Río"));
    changedAt(1'700'000'000, 250'000'000);
    EXPECT_EQ(imageFingerprint(file, ""), expected("|1700000000.25|5|"));
    std::filesystem::remove(file);
    EXPECT_EQ(imageFingerprint(file, "c"), expected("|||c"));
    EXPECT_EQ(fnv1a64("foobar"), 0x85944171f73967e8u);
}

struct ValidityTest : ::testing::Test {
    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "a.png";
    const Bytes good = FakePictureRendering::smallestPng({30, 20});

    bool isValid(const Bytes& bytes) {
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return isValidGeneratedPng(file, {30, 20});
    }
    /// The good file with another chunk put before its end.
    Bytes withChunk(std::string_view type, const Bytes& content = {}) const {
        Bytes bytes(good.begin(), good.end() - 12);
        FakePictureRendering::chunk(bytes, type, content);
        FakePictureRendering::chunk(bytes, "IEND", {});
        return bytes;
    }
};

TEST_F(ValidityTest, aWholeFileOfTheRightSizeIsValidAndNothingElseIs) {
    ASSERT_TRUE(isValid(good));
    EXPECT_FALSE(isValidGeneratedPng(file, {31, 20}));
    EXPECT_FALSE(isValidGeneratedPng(folder.path(), {30, 20}));
    EXPECT_FALSE(isValidGeneratedPng(folder.path() / "gone.png", {30, 20}));
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_FALSE(isValid(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length))))
            << length;
    }
    Bytes longer = good;
    longer.push_back(0);
    EXPECT_FALSE(isValid(longer)) << "bytes behind the end";
    EXPECT_FALSE(isValid({'<', 'h', 't', 'm', 'l', '>'}));
}

TEST_F(ValidityTest, damageThatAHeaderCheckWouldMissIsFound) {
    EXPECT_FALSE(isValid(withChunk("acTL"))) << "an animation";
    EXPECT_FALSE(isValid(withChunk("fcTL")));
    EXPECT_TRUE(isValid(withChunk("tEXt", {'a'})));
    Bytes split = withChunk("tEXt", {'a'});
    split.resize(split.size() - 12);
    FakePictureRendering::chunk(split, "IDAT", {1, 2});
    FakePictureRendering::chunk(split, "IEND", {});
    EXPECT_FALSE(isValid(split)) << "image data in two runs";

    const auto flipped = [&](std::size_t at) {
        Bytes bytes = good;
        bytes[at] ^= 0x40;
        return bytes;
    };
    for (const std::size_t at : {0u, 12u, 19u, 24u, 29u, 41u}) EXPECT_FALSE(isValid(flipped(at))) << at;
    // A length that points far beyond the file must not send the walk there.
    Bytes huge = good;
    huge[33] = huge[34] = huge[35] = huge[36] = 0xff;
    EXPECT_FALSE(isValid(huge));
}

}  // namespace
}  // namespace quillmar
