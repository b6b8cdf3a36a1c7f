#include "linux/x11/X11DesktopPicture.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "desktop/Desktop.h"

namespace quillmar {
namespace {

using testing::Each;
using testing::HasSubstr;

constexpr RgbColor red{200, 10, 20};
constexpr RgbColor blue{10, 20, 200};
constexpr RgbColor black{0, 0, 0};
constexpr RgbColor foreign{0x12, 0x34, 0x56};

class X11DesktopPictureTest : public testing::Test {
protected:
    void paintsAnotherProgram(const std::string& what = "-solid '#123456'") {
        ASSERT_EQ(runProgram("hsetroot " + what + " >/dev/null"), 0);
    }
    std::filesystem::path paints(const Screen& screen, RgbColor color, int width, int height) {
        const auto file = desktop_.solidPicture(width, height, color);
        picture_.setDesktopImage(file, screen, {});
        return file;
    }
    std::string failureOfSetting(const std::filesystem::path& file, const Screen& screen) {
        try {
            picture_.setDesktopImage(file, screen, {});
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no failure";
    }

    Desktop desktop_;
    X11DesktopPicture picture_{desktop_.folder() / "captures"};
    Screen left_ = desktop_.screen("DUMMY0");
    Screen right_ = desktop_.screen("DUMMY1");
};

TEST_F(X11DesktopPictureTest, eachMonitorHasAPictureOfItsOwn) {
    paintsAnotherProgram();
    const auto leftFile = paints(left_, red, 1920, 1080);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(foreign));

    const auto rightFile = paints(right_, blue, 1280, 1024);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(blue));
    EXPECT_EQ(desktop_.pixel(3000, 1060), foreign);
    EXPECT_EQ(picture_.desktopImage(left_), leftFile);
    EXPECT_EQ(X11DesktopPicture(desktop_.folder()).desktopImage(right_), rightFile);
}

TEST_F(X11DesktopPictureTest, aPictureOfAnotherSizeLiesTopLeftAndIsClipped) {
    paints(left_, blue, 1920, 1080);
    paints(right_, red, 1000, 2000);
    EXPECT_EQ(desktop_.pixel(1920 + 999, 1023), red);
    EXPECT_EQ(desktop_.pixel(1920 + 1000, 0), black);
    paints(right_, red, 3000, 100);
    EXPECT_EQ(desktop_.pixel(1920 + 1279, 99), red);
    EXPECT_EQ(desktop_.pixel(1920, 100), black);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(blue));
}

TEST_F(X11DesktopPictureTest, thePictureOfAnotherProgramIsCapturedAndComesBackToThePixel) {
    paintsAnotherProgram("-add '#ff0000' -add '#00ff80' -add '#3010f0' -gradient 35");
    const auto before = desktop_.pixels(0, 0, 3200, 1080);
    EXPECT_EQ(picture_.desktopImage(left_), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(desktop_.folder() / "captures"));
    const auto left = picture_.captureDesktopImage(left_);
    const auto right = picture_.captureDesktopImage(right_);
    ASSERT_TRUE(left && right);
    EXPECT_THAT(left->filename().string(), testing::MatchesRegex("captured-DUMMY0-[0-9a-f]+\\.png"));
    struct stat info{};
    ASSERT_EQ(stat(left->c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_EQ(picture_.captureDesktopImage(left_), left);

    paints(left_, red, 1920, 1080);
    paints(right_, blue, 1280, 1024);
    picture_.setDesktopImage(*left, left_, picture_.desktopImageOptions(left_));
    picture_.setDesktopImage(*right, right_, {});
    EXPECT_TRUE(desktop_.pixels(0, 0, 3200, 1080) == before);
}

TEST_F(X11DesktopPictureTest, aFileIsNotTakenForThePictureThatAnotherProgramHasSetSince) {
    const auto file = paints(left_, red, 1920, 1080);
    // Often: the server gives the same ids out again.
    for (int i = 0; i < 6; ++i) {
        paintsAnotherProgram();
        EXPECT_EQ(picture_.desktopImage(left_), std::nullopt) << i;
    }
    paints(right_, blue, 1280, 1024);
    EXPECT_EQ(picture_.desktopImage(left_), std::nullopt);
    EXPECT_EQ(desktop_.pixel(5, 5), foreign);
}

TEST_F(X11DesktopPictureTest, aFileThatIsGoneIsReplacedByACapture) {
    const auto file = paints(left_, red, 1920, 1080);
    std::filesystem::remove(file);
    EXPECT_EQ(picture_.desktopImage(left_), std::nullopt);
    const auto captured = picture_.captureDesktopImage(left_);
    ASSERT_TRUE(captured);
    paints(left_, blue, 1920, 1080);
    picture_.setDesktopImage(*captured, left_, {});
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
}

TEST_F(X11DesktopPictureTest, aDesktopThatNobodyHasPaintedIsTakenBackToBlack) {
    for (const std::string property :
         {"-remove _XROOTPMAP_ID", "-f _XROOTPMAP_ID 32x -set _XROOTPMAP_ID 0x7654321"}) {
        ASSERT_EQ(runProgram("xprop -root " + property), 0);
        EXPECT_EQ(picture_.desktopImage(left_), std::nullopt);
        const auto before = picture_.captureDesktopImage(left_);
        ASSERT_TRUE(before) << property;
        paints(left_, red, 1920, 1080);
        EXPECT_EQ(desktop_.pixel(0, 0), red);
        picture_.setDesktopImage(*before, left_, {});
        EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(black));
    }
}

TEST_F(X11DesktopPictureTest, aBadFileOrAnAbsentMonitorLeavesTheDesktopAsItWas) {
    paints(left_, red, 1920, 1080);
    const auto good = paints(right_, blue, 1280, 1024);
    const auto cut = desktop_.folder() / "cut.png";
    std::filesystem::copy_file(good, cut);
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) - 30);
    EXPECT_THAT(failureOfSetting(cut, left_), HasSubstr("cut.png: "));
    EXPECT_THAT(failureOfSetting(desktop_.folder() / "none.png", left_), HasSubstr("No such file"));
    EXPECT_EQ(failureOfSetting(good, Screen{}), "The display is no longer connected.");
    desktop_.arrange("--output DUMMY1 --off");
    EXPECT_EQ(failureOfSetting(good, right_), "The display is no longer connected.");
    EXPECT_EQ(picture_.captureDesktopImage(right_), std::nullopt);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
}

TEST_F(X11DesktopPictureTest, theDesktopMayGrowAndShrinkBetweenPictures) {
    paints(left_, red, 1920, 1080);
    paints(right_, blue, 1280, 1024);
    desktop_.arrange("--output DUMMY1 --off");
    paints(left_, blue, 1920, 1080);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(blue));
    desktop_.arrange("--output DUMMY1 --mode 1280x1024 --pos 1920x56");
    paints(right_, red, 1280, 1024);
    EXPECT_THAT(desktop_.pixels(1920, 56, 1280, 1024), Each(red));
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(blue));
}

TEST_F(X11DesktopPictureTest, theServersMemoryDoesNotGrow) {
    const auto leftFile = paints(left_, red, 1920, 1080);
    const auto rightFile = paints(right_, blue, 1280, 1024);
    const auto before = desktop_.memory();
    for (int i = 0; i < 100; ++i) {
        picture_.setDesktopImage(leftFile, left_, {});
        picture_.setDesktopImage(rightFile, right_, {});
    }
    failureOfSetting(desktop_.folder() / "none.png", left_);
    EXPECT_EQ(desktop_.memory(), before);
    EXPECT_EQ(picture_.desktopImage(left_), leftFile);
}

TEST_F(X11DesktopPictureTest, aServerThatSharesNoMemoryIsPaintedTheSlowWay) {
    const auto file = desktop_.solidPicture(1280, 1024, red);
    OtherProcess container({"container", file, std::to_string(right_.number)});
    const int status = container.wait();
    if (status == 77) GTEST_SKIP() << "the system gives no memory of its own to a process";
    EXPECT_EQ(status, 0);
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(red));
}

}  // namespace
}  // namespace quillmar
