#include "wallpaper/SlideshowImageLibrary.h"

#include <fstream>

#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

struct SlideshowTest : ::testing::Test {
    TemporaryFolder temporary;
    fs::path folder = temporary.path() / "Férias 2";
    Url url = Url::fromFilePath(folder);
    std::size_t asked = 0;
    std::size_t answer = 0;
    RandomIndex random = [this](std::size_t count) {
        asked = count;
        return answer;
    };

    void SetUp() override { fs::create_directories(folder); }
    void put(const fs::path& name) {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name) << "x";
    }
    std::string next(SlideshowSelection selection, const std::string& last = {}) {
        if (!last.empty()) selection.lastImageURL = Url::fromFilePath(folder / last);
        return fs::relative(*nextSlideshowImage(url, selection, random).filePath(), folder).string();
    }
    std::string failure() {
        try {
            nextSlideshowImage(url, {.includeSubfolders = true}, random);
            return "none";
        } catch (const SlideshowImageLibraryError& error) {
            return error.what();
        }
    }
};

TEST_F(SlideshowTest, picturesFollowEachOtherAsPeopleCountAndBeginAgain) {
    for (const char* name : {"10.jpg", "9.PNG", "b 2.webp", "B 10.heic"}) put(name);
    std::vector<std::string> order{next({})};
    for (int i = 0; i < 4; ++i) order.push_back(next({}, order.back()));
    EXPECT_THAT(order, ElementsAre("9.PNG", "10.jpg", "b 2.webp", "B 10.heic", "9.PNG"));
    EXPECT_EQ(next({}, "gone.jpg"), "9.PNG");
    EXPECT_EQ(next({}, "./10.jpg"), "b 2.webp") << "another spelling of the same file";
}

TEST_F(SlideshowTest, onlyVisiblePicturesCountAndThoseBelowOnRequest) {
    for (const char* name : {"a.jpg", ".hidden.jpg", "notes.txt", "sub/b.jpg", ".trash/c.jpg"}) put(name);
    fs::create_directory(folder / "folder.jpg");
    fs::create_directory_symlink(folder, folder / "sub/circle");
    fs::create_symlink(folder / "a.jpg", folder / "link.png");
    EXPECT_EQ(slideshowImages(url, false).size(), 2u);
    EXPECT_EQ(slideshowImages(url, true).size(), 3u);
}

TEST_F(SlideshowTest, shufflingNeverShowsTheSamePictureTwiceInARowUnlessThereIsNoOther) {
    put("a.jpg");
    EXPECT_EQ(next({.shuffle = true}, "a.jpg"), "a.jpg");
    put("b.jpg");
    put("c.jpg");
    for (answer = 0; answer < 2; ++answer) EXPECT_NE(next({.shuffle = true}, "b.jpg"), "b.jpg");
    EXPECT_EQ(asked, 2u);
    next({.shuffle = true});
    EXPECT_EQ(asked, 3u);
    answer = 0;
    next({.shuffle = true,
          .isLeftOut = [this](const Url& image) { return image != Url::fromFilePath(folder / "c.jpg"); }});
    EXPECT_EQ(asked, 1u);
}

TEST_F(SlideshowTest, aFolderWithoutPicturesOrOneThatIsNoneIsNamed) {
    EXPECT_EQ(failure(), "No supported images were found in " + folder.string() + ".");
    fs::remove(folder);
    const std::string unreadable =
        "Quillmar cannot read the slideshow folder at " + folder.string() + ". Choose the folder again.";
    EXPECT_EQ(failure(), unreadable);
    std::ofstream{folder};
    EXPECT_EQ(failure(), unreadable);
    EXPECT_THROW(slideshowImages(*Url::parse("https://example.org/pictures"), false),
                 SlideshowImageLibraryError);
}

}  // namespace
}  // namespace quillmar
