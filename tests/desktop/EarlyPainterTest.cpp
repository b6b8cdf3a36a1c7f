#include "linux/early/EarlyPainter.h"

#include <gmock/gmock.h>

#include <fstream>

#include "desktop/Desktop.h"
#include "desktop/WaitingLoop.h"
#include "linux/x11/OutputMemory.h"
#include "linux/x11/X11DesktopPicture.h"
#include "storage/LastShownRows.h"

namespace quillmar {
namespace {

using testing::Each;

constexpr RgbColor red{200, 10, 20};
constexpr RgbColor blue{10, 20, 200};
constexpr RgbColor foreign{0x12, 0x34, 0x56};

class EarlyPainterTest : public testing::Test {
protected:
    EarlyPainterTest() { EXPECT_EQ(runProgram("hsetroot -solid '#123456' >/dev/null"), 0); }
    /// What was shown last on a monitor that says nothing of itself.
    std::filesystem::path showedLast(const std::string& connector, int width, int height, RgbColor color) {
        const auto png = desktop_.folder() / (connector + ".png");
        std::ofstream(png) << connector;
        const Uuid uuid = OutputIdentities().identify({{connector, ""}}).front();
        LastShownRows::write(rows_, uuid.lowercaseString(), png, *solidPixels(width, height, color));
        return png;
    }
    int paints(Environment environment = {}) const {
        environment.emplace("XDG_STATE_HOME", desktop_.folder() / "state");
        return paintLastShown(rows_, environment);
    }

    Desktop desktop_;
    std::filesystem::path rows_ = desktop_.folder() / "rows";
};

TEST_F(EarlyPainterTest, everyDisplayShowsItsOwnAndTheProgramFindsItThere) {
    const auto left = showedLast("DUMMY0", 1920, 1080, red);
    const auto right = showedLast("DUMMY1", 1280, 1024, blue);
    EXPECT_EQ(paints(), 2);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(blue));
    EXPECT_EQ(desktop_.pixel(3000, 1060), foreign);

    WaitingLoop loop;
    ThreadPool pool(1);
    const PpmEncoding encoding;
    X11DesktopPicture picture(pool, encoding, desktop_.folder());
    EXPECT_EQ(loop.await(picture.desktopImage(desktop_.screen("DUMMY0"))), PresentDesktopImage{left});
    EXPECT_EQ(loop.await(picture.desktopImage(desktop_.screen("DUMMY1"))), PresentDesktopImage{right});
    const auto memory = desktop_.memory();
    EXPECT_EQ(paints(), 2);
    EXPECT_EQ(desktop_.memory(), memory) << "it is shown already";
}

TEST_F(EarlyPainterTest, whatDoesNotFitIsLeftToTheProgram) {
    EXPECT_EQ(paints(), 0);
    showedLast("DUMMY0", 1920, 1079, red);
    showedLast("DUMMY2", 1280, 1024, red);
    EXPECT_EQ(paints(), 0);
    showedLast("DUMMY1", 1280, 1024, blue);
    for (const auto& [name, value] : Environment{{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"},
                                                 {"WAYLAND_DISPLAY", "wayland-0"},
                                                 {"XDG_SESSION_TYPE", "wayland"}}) {
        EXPECT_EQ(paints({{name, value}}), 0) << name;
    }
    EXPECT_THAT(desktop_.pixels(0, 0, 3200, 1080), Each(foreign));
    EXPECT_EQ(paints({{"XDG_CURRENT_DESKTOP", "openbox"}}), 1);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(foreign));
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(blue));
}

}  // namespace
}  // namespace quillmar
