#include "linux/desktop/PlasmaDesktopPicture.h"

#include <gmock/gmock.h>

#include "base/Url.h"
#include "desktop/Desktop.h"
#include "desktop/FakePlasmaShell.h"
#include "desktop/WaitingLoop.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {
namespace {

class PlasmaDesktopPictureTest : public testing::Test {
protected:
    PlasmaDesktopPictureTest() { EXPECT_EQ(shell_.line(), "ready"); }
    void shows(const std::filesystem::path& file, const Screen& screen, DesktopImageOptions options = {}) {
        loop_.await(picture_.setDesktopImage({file, nullptr}, screen, std::move(options)));
    }
    std::optional<std::filesystem::path> capture(const Screen& screen) {
        return loop_.await(picture_.captureDesktopImage(screen));
    }
    static std::string allDesktops() { return inPlasmaShell("print(JSON.stringify(all))"); }
    static std::string settingOf(int screen, const std::string& name) {
        return inPlasmaShell("print(all[" + std::to_string(screen) +
                             "].settings['Wallpaper/org.kde.image/General/" + name + "'])");
    }

    Desktop desktop_;
    OtherProcess shell_{{"plasma-shell"}};
    WaitingLoop loop_;
    ThreadPool pool_{2};
    PpmEncoding encoding_;
    X11DesktopPicture root_{pool_, encoding_, desktop_.folder() / "captures"};
    PlasmaDesktopPicture picture_{loop_.await(sessionBus()), root_, pool_};
    Screen left_ = desktop_.screen("DUMMY0");
    Screen right_ = desktop_.screen("DUMMY1");
    /// With all that a script could take for its own.
    std::filesystem::path file_ = desktop_.folder() / "it's \"a\" {0} \\ päper.png";
};

TEST_F(PlasmaDesktopPictureTest, theDesktopInTheMonitorsCornerShowsThePictureAndNoOther) {
    std::filesystem::copy_file(desktop_.solidPicture(1280, 1024, {}), file_);
    shows(file_, right_);
    EXPECT_EQ(settingOf(1, "Image"), Url::fromFilePath(file_).string());
    EXPECT_EQ(settingOf(1, "FillMode"), "2");
    EXPECT_EQ(settingOf(0, "Image"), "undefined");
    EXPECT_EQ(settingOf(2, "Image"), "undefined");
    EXPECT_EQ(loop_.await(picture_.desktopImage(right_)), PresentDesktopImage{file_});
    EXPECT_EQ(loop_.await(picture_.desktopImage(left_)), PresentDesktopImage{});
}

TEST_F(PlasmaDesktopPictureTest, whateverDrewTheDesktopComesBack) {
    const auto own = desktop_.solidPicture(300, 200, {});
    const std::string image = "all[0].settings['Wallpaper/org.kde.image/General/Image'] = ";
    for (const std::string& made : {
             "all[0].wallpaperPlugin = 'org.kde.slideshow'; " + image + "'" + own.string() + "'",
             image + "'/usr/share/wallpapers/Next/'",
             image + "'" + own.string() + "'; all[0].wallpaperPlugin = 'org.kde.image'",
         }) {
        inPlasmaShell("all[0].settings = {'Wallpaper/org.kde.image/General/FillMode': '1'}; " + made +
                      "; all[0].currentConfigGroup = ['Wallpaper', 'org.kde.image', 'General']");
        const std::string before = allDesktops();
        const auto captured = capture(left_);
        const auto options = loop_.await(picture_.desktopImageOptions(left_));
        ASSERT_TRUE(captured) << made;
        shows(desktop_.solidPicture(1920, 1080, {}), left_);
        EXPECT_NE(allDesktops(), before);
        shows(*captured, left_, options);
        EXPECT_EQ(loop_.await(picture_.desktopImageOptions(left_)), options) << made;
        EXPECT_EQ(inPlasmaShell("print(all[0].wallpaperPlugin)"), options.at("wallpaperPlugin"));
        EXPECT_EQ(capture(left_), captured) << made;
    }
}

TEST_F(PlasmaDesktopPictureTest, aMonitorThatTheDesktopDoesNotHaveIsAFailure) {
    const auto file = desktop_.solidPicture(1280, 1024, {});
    const auto failure = [&](const std::filesystem::path& picture, const Screen& screen) {
        return loop_.failureOf(picture_.setDesktopImage({picture, nullptr}, screen, {}));
    };
    desktop_.arrange("--output DUMMY1 --pos 1920x56");
    const Screen moved = desktop_.screen("DUMMY1");
    EXPECT_EQ(failure(file, moved), "The display DUMMY1 is no longer connected.");
    EXPECT_EQ(loop_.failureOf(picture_.desktopImage(moved)), "The display DUMMY1 is no longer connected.");
    EXPECT_THAT(failure(desktop_.folder() / "none.png", left_), testing::HasSubstr("No such file"));
    inPlasmaShell("desktops = function () { throw 'widgets are locked'; }");
    EXPECT_EQ(failure(file, left_),
              "The picture of DUMMY0 could not be set: Plasma refused it (widgets are locked).");
}

}  // namespace
}  // namespace quillmar
