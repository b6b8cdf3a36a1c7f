#include "wallpaper/WallpaperRenderer.h"

#include <gmock/gmock.h>

#include <fstream>
#include <system_error>

#include "fakes/FakePictureRendering.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;
using Case = Error::Case;

struct WallpaperRendererTest : testing::Test {
    TemporaryFolder folder;
    std::filesystem::path cache = folder.path() / "Cache";
    std::filesystem::path source = folder.path() / "source.jpg";
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    FakePictureRendering rendering;
    WallpaperRenderer renderer{cache, rendering, clock};
    std::string background = " #00ff80\n";
    DisplayInfo display{.id = "display:a", .frame = {0, 0, 320, 200}, .scaleFactor = 2};

    WallpaperRendererTest() { std::ofstream(source) << "a picture"; }
    std::filesystem::path image(const std::string& caption = "") {
        return renderer.image(source, ImagePresentationLayout::fit, background, caption, display);
    }
    std::optional<Error> failure() { return failureOf(renderer); }
    std::optional<Error> failureOf(const WallpaperRenderer& which) {
        try {
            which.image(source, ImagePresentationLayout::fit, background, "", display);
        } catch (const Error& error) {
            return error;
        }
        return std::nullopt;
    }
};

TEST_F(WallpaperRendererTest, aPictureIsRenderedOnceAndFoundAgain) {
    const auto file = image("A caption");
    EXPECT_EQ(file.parent_path(), cache);
    EXPECT_TRUE(file.filename().string().starts_with("image-v2-display-a-640x400-fit-00FF80-")) << file;
    const PictureComposition& composition = rendering.lastComposition;
    EXPECT_EQ(composition.background, (RgbColor{0, 255, 128}));
    EXPECT_EQ(composition.canvas, (PixelSize{640, 400}));
    EXPECT_EQ(composition.caption->text, "A caption");

    loop.advance(std::chrono::hours(1));
    EXPECT_EQ(image("A caption"), file);
    EXPECT_EQ(rendering.rendered, 1);
    EXPECT_EQ(lastUsedStamp(file).value_or(clock.now()), clock.now()) << "or the file system has no stamps";
    EXPECT_NE(image("Another"), file);
    EXPECT_EQ(rendering.rendered, 2);
}

TEST_F(WallpaperRendererTest, whatIsNoWholePictureOfTheRightSizeIsRenderedAnew) {
    const auto file = image();
    std::filesystem::resize_file(file, std::filesystem::file_size(file) - 1);
    EXPECT_EQ(image(), file);
    EXPECT_EQ(rendering.rendered, 2);
    std::ofstream(source, std::ios::app) << ", changed";
    EXPECT_NE(image(), file) << "a changed source is another file";
}

TEST_F(WallpaperRendererTest, aBackgroundThatIsNoColourIsBlack) {
    background = "teal";
    EXPECT_TRUE(image().filename().string().contains("-TEAL-"));
    EXPECT_EQ(rendering.lastComposition.background, RgbColor{});
}

TEST_F(WallpaperRendererTest, eachFailureIsTheErrorThatNamesItsCause) {
    std::ofstream(folder.path() / "file");
    rendering.fails = true;
    EXPECT_EQ(failure(), Error(Case::imageRenderingFailed));
    rendering.fails = false;
    rendering.writeError = std::errc::no_space_on_device;
    EXPECT_EQ(failure()->errorCase(), Case::cacheWriteFailed);
    EXPECT_EQ(failure()->reason(), std::make_error_code(std::errc::no_space_on_device).message());
    rendering.writeError.reset();
    std::filesystem::remove(source);
    EXPECT_EQ(failure(), Error(Case::unreadableImage, source.string()));
    const WallpaperRenderer blocked(folder.path() / "file" / "Cache", rendering, clock);
    EXPECT_EQ(failureOf(blocked)->errorCase(), Case::cacheDirectoryUnavailable);
}

}  // namespace
}  // namespace quillmar
