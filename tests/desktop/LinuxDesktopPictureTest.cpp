#include "linux/desktop/LinuxDesktopPicture.h"

#include <gmock/gmock.h>

#include "desktop/Desktop.h"
#include "desktop/FakePlasmaShell.h"

namespace quillmar {
namespace {

constexpr RgbColor red{200, 10, 20};

TEST(LinuxDesktopPictureTest, theDesktopsOwnWayIsTakenWhereItAnswersAndElseTheRootWindow) {
    Desktop desktop;
    const Screen left = desktop.screen("DUMMY0");
    const auto file = desktop.solidPicture(1920, 1080, red);
    const auto paintsTheRoot = [&](const std::string& names) {
        EXPECT_EQ(runProgram("hsetroot -solid '#123456' >/dev/null"), 0);
        const Environment environment =
            names.empty() ? Environment() : Environment{{"XDG_CURRENT_DESKTOP", names}};
        LinuxDesktopPicture picture(environment,
                                    {desktop.folder() / "captures", desktop.folder() / "composed"});
        picture.setDesktopImage(file, left, {});
        EXPECT_EQ(picture.desktopImage(left), file) << names;
        return desktop.pixel(0, 0) == red;
    };
    for (const std::string names : {"", "openbox", "KDE", "Enlightenment:sway"}) {
        EXPECT_TRUE(paintsTheRoot(names)) << names;
    }
    for (const std::string names : {"ubuntu:GNOME", "KDE:MATE", "Budgie:GNOME", "XFCE"}) {
        EXPECT_FALSE(paintsTheRoot(names)) << names;
    }
    OtherProcess shell({"plasma-shell"});
    ASSERT_EQ(shell.line(), "ready");
    EXPECT_FALSE(paintsTheRoot("KDE"));
}

TEST(LinuxDesktopPictureTest, theRootWindowShowsAgainWhatASessionOrAPlugHasLost) {
    Desktop desktop;
    const Screen left = desktop.screen("DUMMY0");
    const Screen right = desktop.screen("DUMMY1");
    const auto file = desktop.solidPicture(1920, 1080, red);
    const LinuxDesktopPicture::Folders folders{desktop.folder() / "captures", desktop.folder() / "composed"};
    LinuxDesktopPicture({}, folders).setDesktopImage(file, left, {});
    // The next session: a root window that another program has painted, and another process of ours.
    EXPECT_EQ(runProgram("hsetroot -solid '#123456' >/dev/null"), 0);
    LinuxDesktopPicture picture({}, folders);
    picture.recallDesktopImage(right);
    EXPECT_EQ(picture.desktopImage(right), std::nullopt) << "it never had one";
    picture.recallDesktopImage(left);
    EXPECT_EQ(desktop.pixel(1919, 1079), red);
    EXPECT_EQ(picture.desktopImage(left), file);

    EXPECT_EQ(runProgram("hsetroot -solid '#123456' >/dev/null"), 0);
    std::filesystem::remove(file);
    picture.recallDesktopImage(left);
    EXPECT_NE(desktop.pixel(0, 0), red);
}

}  // namespace
}  // namespace quillmar
