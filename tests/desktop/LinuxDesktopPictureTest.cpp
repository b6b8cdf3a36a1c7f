#include "linux/desktop/LinuxDesktopPicture.h"

#include <gmock/gmock.h>

#include "desktop/Desktop.h"
#include "desktop/FakePlasmaShell.h"
#include "desktop/WaitingLoop.h"

namespace quillmar {
namespace {

TEST(LinuxDesktopPictureTest, theDesktopsOwnWayIsTakenWhereItAnswersAndElseTheRootWindow) {
    Desktop desktop;
    WaitingLoop loop;
    ThreadPool pool(2);
    const PpmEncoding encoding;
    const auto way = [&](Environment environment) -> std::string {
        LinuxDesktopPicture picture(pool, encoding, std::move(environment), desktop.folder() / "captures");
        try {
            const DesktopMethods methods = loop.await(picture.methods());
            EXPECT_EQ(&loop.await(picture.methods()).screens, &methods.screens);
            if (methods.spanned) return methods.screens.takesPixels() ? "spanned" : "?";
            return methods.screens.takesPixels() ? "root" : "own";
        } catch (const DesktopPictureError& error) {
            return error.errorCase() == DesktopPictureError::Case::noWay ? "none" : "?";
        }
    };
    const std::string names = "XDG_CURRENT_DESKTOP";
    const Environment wayland{{"WAYLAND_DISPLAY", "wayland-0"}};
    EXPECT_EQ(way({}), "root");
    for (const std::string desktops : {"openbox", "KDE", "Enlightenment:sway"}) {
        EXPECT_EQ(way({{names, desktops}}), "root") << desktops;
        EXPECT_EQ(way({{names, desktops}, {"XDG_SESSION_TYPE", "wayland"}}), "none") << desktops;
    }
    for (const std::string desktops : {"ubuntu:GNOME", "KDE:MATE", "Budgie:GNOME"}) {
        EXPECT_EQ(way({{names, desktops}, *wayland.begin()}), "spanned") << desktops;
    }
    EXPECT_EQ(way({{names, "XFCE"}}), "own");
    EXPECT_EQ(way(wayland), "none");
    OtherProcess shell({"plasma-shell"});
    ASSERT_EQ(shell.line(), "ready");
    EXPECT_EQ(way({{names, "KDE"}, *wayland.begin()}), "own");
}

}  // namespace
}  // namespace quillmar
