#include "wallpaper/StaticPicture.h"

#include <fstream>

#include "fakes/FakePictureRendering.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "storage/StoredFileGrant.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

struct StaticPictureTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    TemporaryFolder folder;
    FakePictureRendering rendering;
    WallpaperRenderer renderer{folder.path() / "cache", rendering, clock};
    DisplayInfo display{.id = "display:a", .frame = {0, 0, 30, 20}};

    Url put(const std::string& name) {
        fs::create_directories((folder.path() / name).parent_path());
        std::ofstream(folder.path() / name) << "a picture";
        return Url::fromFilePath(folder.path() / name);
    }
    StaticPicture render(WallpaperMode mode) {
        return renderStaticPicture(mode, display, renderer, [](std::size_t) { return std::size_t{0}; });
    }
    std::string failure(WallpaperMode mode) {
        try {
            render(std::move(mode));
            return "none";
        } catch (const AppLocalizableError& error) {
            return error.message(GeneralLanguage::english);
        }
    }
    std::string source() const { return rendering.lastSource.filename().string(); }
};

TEST_F(StaticPictureTest, theProgramsOwnCopyOfAnImageComesBeforeTheUsersFile) {
    ImagePresentationSettings image;
    image.imageURL = put("chosen.jpg");
    render({image});
    EXPECT_EQ(source(), "chosen.jpg");
    image.cachedImageURL = put("Cache/copy.jpg");
    render({image});
    EXPECT_EQ(source(), "copy.jpg");
}

TEST_F(StaticPictureTest, anImageThatWasRenamedInItsFolderIsFoundByItsGrantAndADeletedOneIsNot) {
    ImagePresentationSettings image;
    image.imageURL = put("holiday.jpg");
    image.imageBookmark = makeStoredFileGrant(folder.path() / "holiday.jpg");
    fs::rename(folder.path() / "holiday.jpg", folder.path() / "summer.jpg");
    render({image});
    EXPECT_EQ(source(), "summer.jpg");
    fs::remove(folder.path() / "summer.jpg");
    EXPECT_NE(failure({image}), "none");
}

TEST_F(StaticPictureTest, anImageThatIsNotThereIsNamed) {
    ImagePresentationSettings image;
    EXPECT_EQ(failure({image}), "Choose an image for this mode.");
    image.imageURL = Url::fromFilePath("/gone/holiday.jpg");
    EXPECT_EQ(failure({image}), "Quillmar cannot read the selected image at /gone/holiday.jpg.");
    image.imageURL = Url::parse("https://example.org/holiday.jpg");
    EXPECT_EQ(failure({image}),
              "Quillmar cannot read the selected image at https://example.org/holiday.jpg.");
}

TEST_F(StaticPictureTest, aSlideshowGoesOnFromItsLastImageAndSaysWhichItChose) {
    put("show/1.jpg");
    const Url second = put("show/2.jpg");
    SlideshowPresentationSettings slideshow;
    slideshow.folderURL = Url::fromFilePath(folder.path() / "show");
    slideshow.rotationIntervalSeconds = 60;
    slideshow.lastImageURL = render({slideshow}).selectedSlideshowImageURL;
    EXPECT_EQ(source(), "1.jpg");
    EXPECT_EQ(render({slideshow}).selectedSlideshowImageURL, second);
    EXPECT_EQ(source(), "2.jpg");
    slideshow.folderBookmark = makeStoredFileGrant(folder.path() / "show");
    fs::rename(folder.path() / "show", folder.path() / "moved");
    render({slideshow});
    EXPECT_EQ(source(), "1.jpg") << "the folder was found, its last image is at another place";
    EXPECT_EQ(failure({APODSettings{}}), "This wallpaper mode is not available yet.");
}

}  // namespace
}  // namespace quillmar
