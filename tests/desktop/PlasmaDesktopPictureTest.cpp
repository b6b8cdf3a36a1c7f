#include "linux/desktop/PlasmaDesktopPicture.h"

#include <gmock/gmock.h>

#include "base/Url.h"
#include "desktop/Desktop.h"
#include "desktop/FakePlasmaShell.h"
#include "linux/dbus/BlockingBus.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {
namespace {

class PlasmaDesktopPictureTest : public testing::Test {
protected:
    PlasmaDesktopPictureTest() { EXPECT_EQ(shell_.line(), "ready"); }
    static std::string allDesktops() { return inPlasmaShell("print(JSON.stringify(all))"); }
    static std::string settingOf(int screen, const std::string& name) {
        return inPlasmaShell("print(all[" + std::to_string(screen) +
                             "].settings['Wallpaper/org.kde.image/General/" + name + "'])");
    }

    Desktop desktop_;
    OtherProcess shell_{{"plasma-shell"}};
    Bus bus_ = blockingSessionBus();
    X11DesktopPicture root_{desktop_.folder() / "captures"};
    PlasmaDesktopPicture picture_{bus_, root_};
    Screen left_ = desktop_.screen("DUMMY0");
    Screen right_ = desktop_.screen("DUMMY1");
    /// With all that a script could take for its own.
    std::filesystem::path file_ = desktop_.folder() / "it's \"a\" {0} \\ päper.png";
};

TEST_F(PlasmaDesktopPictureTest, theDesktopInTheMonitorsCornerShowsThePictureAndNoOther) {
    std::filesystem::copy_file(desktop_.solidPicture(1280, 1024, {}), file_);
    picture_.setDesktopImage(file_, right_, {});
    EXPECT_EQ(settingOf(1, "Image"), Url::fromFilePath(file_).string());
    EXPECT_EQ(settingOf(1, "FillMode"), "2");
    EXPECT_EQ(settingOf(0, "Image"), "undefined");
    EXPECT_EQ(settingOf(2, "Image"), "undefined");
    EXPECT_EQ(picture_.desktopImage(right_), file_);
    EXPECT_EQ(picture_.desktopImage(left_), std::nullopt);
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
        const auto captured = picture_.captureDesktopImage(left_);
        const auto options = picture_.desktopImageOptions(left_);
        ASSERT_TRUE(captured) << made;
        picture_.setDesktopImage(desktop_.solidPicture(1920, 1080, {}), left_, {});
        EXPECT_NE(allDesktops(), before);
        picture_.setDesktopImage(*captured, left_, options);
        EXPECT_EQ(picture_.desktopImageOptions(left_), options) << made;
        EXPECT_EQ(inPlasmaShell("print(all[0].wallpaperPlugin)"), options.at("wallpaperPlugin"));
        EXPECT_EQ(picture_.captureDesktopImage(left_), captured) << made;
    }
}

TEST_F(PlasmaDesktopPictureTest, aMonitorThatTheDesktopDoesNotHaveIsAFailure) {
    const auto file = desktop_.solidPicture(1280, 1024, {});
    desktop_.arrange("--output DUMMY1 --pos 1920x56");
    EXPECT_THROW(picture_.setDesktopImage(file, right_, {}), std::runtime_error);
    desktop_.arrange("--output DUMMY1 --off");
    EXPECT_THROW(picture_.setDesktopImage(file, right_, {}), std::runtime_error);
    EXPECT_EQ(picture_.desktopImage(right_), std::nullopt);
    inPlasmaShell("desktops = function () { throw 'widgets are locked'; }");
    EXPECT_THROW(picture_.setDesktopImage(file, left_, {}), BusRefusal);
}

}  // namespace
}  // namespace quillmar
