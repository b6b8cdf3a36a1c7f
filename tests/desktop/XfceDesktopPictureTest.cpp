#include "linux/desktop/XfceDesktopPicture.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>

#include "desktop/Desktop.h"
#include "desktop/WaitingLoop.h"
#include "linux/desktop/VariantText.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {
namespace {

constexpr RgbColor red{200, 10, 20};
constexpr RgbColor blue{10, 20, 200};
constexpr RgbColor green{20, 180, 40};
constexpr RgbColor yellow{210, 200, 30};
constexpr const char* backdrop = "/backdrop";

/// The desktop's own program, from its start to the end of the test.
class Xfdesktop {
public:
    Xfdesktop() {
        const auto launcher = Ref<GSubprocessLauncher>::adopt(g_subprocess_launcher_new(
            GSubprocessFlags(G_SUBPROCESS_FLAGS_STDOUT_SILENCE | G_SUBPROCESS_FLAGS_STDERR_SILENCE)));
        g_subprocess_launcher_setenv(launcher.get(), "HOME", g_getenv("XDG_RUNTIME_DIR"), TRUE);
        g_subprocess_launcher_setenv(launcher.get(), "XDG_CONFIG_HOME", g_getenv("XDG_RUNTIME_DIR"), TRUE);
        process_ = Ref<GSubprocess>::adopt(
            g_subprocess_launcher_spawn(launcher.get(), nullptr, "xfdesktop", "--disable-wm-check", nullptr));
        if (!process_) throw std::runtime_error("xfdesktop is not installed");
    }
    Xfdesktop(const Xfdesktop&) = delete;
    Xfdesktop& operator=(const Xfdesktop&) = delete;
    ~Xfdesktop() {
        g_subprocess_force_exit(process_.get());
        g_subprocess_wait(process_.get(), nullptr, nullptr);
    }

private:
    Ref<GSubprocess> process_;
};

class XfceDesktopPictureTest : public testing::Test {
protected:
    XfceDesktopPictureTest() { user("-p /backdrop -r -R"); }
    /// Calls the settings program of the desktop, as its user would.
    void user(const std::string& arguments) {
        ASSERT_EQ(runProgram("xfconf-query -c xfce4-desktop " + arguments + " >/dev/null 2>&1"), 0);
    }
    void userSets(const std::string& property, const std::string& typeAndValue) {
        user("-p /backdrop/screen0/" + property + " -n -t " + typeAndValue);
    }
    std::string allSettings() {
        const auto answer = loop_.await(
            callOnBus(bus_, {"org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetAllProperties",
                             g_variant_new("(ss)", "xfce4-desktop", backdrop)}));
        std::vector<std::string> lines;
        const Owned<GVariant> all(g_variant_get_child_value(answer.get(), 0));
        for (gsize i = 0; i < g_variant_n_children(all.get()); ++i) {
            lines.push_back(variantText(Owned<GVariant>(g_variant_get_child_value(all.get(), i)).get()));
        }
        std::ranges::sort(lines);
        std::string text;
        for (const std::string& line : lines) text += line + '\n';
        return text;
    }
    testing::AssertionResult shows(RgbColor left, RgbColor right) {
        // Away from the icons, which stand on the left.
        const auto seen = [&] {
            return std::array{desktop_.pixel(1500, 900), desktop_.pixel(1920 + 1000, 900)};
        };
        if (turnUntil([&] { return seen() == std::array{left, right}; })) return testing::AssertionSuccess();
        const auto [seenLeft, seenRight] = seen();
        return testing::AssertionFailure() << "green: " << int(seenLeft.green) << " on the left, "
                                           << int(seenRight.green) << " on the right";
    }

    /// Lets the desktop's program show pictures of the user's own. On a busy machine it sometimes starts deaf
    /// to its settings, whoever changes them; then it is started anew.
    bool startsWithTwoPictures() {
        userSets("monitorDUMMY0/workspace0/image-style", "int -s 3");
        userSets("monitorDUMMY1/workspace0/last-image", "string -s " + other_.string());
        userSets("monitorDUMMY1/workspace0/backdrop-cycle-enable", "bool -s true");
        const auto chooseLeft = [&](const std::filesystem::path& file) {
            userSets("monitorDUMMY0/workspace0/last-image", "string -s " + file.string());
        };
        const auto startedAndListens = [&] {
            chooseLeft(wide_);
            xfdesktop_.emplace();
            if (!shows(green, yellow)) return false;
            chooseLeft(other_);
            const bool listens = bool(shows(yellow, yellow));
            chooseLeft(wide_);
            return listens && shows(green, yellow);
        };
        return startedAndListens() || startedAndListens();
    }

    void sets(const std::filesystem::path& file, const Screen& screen, DesktopImageOptions options = {}) {
        loop_.await(picture_.setDesktopImage({file, nullptr}, screen, std::move(options)));
    }
    std::optional<std::filesystem::path> present(const Screen& screen) {
        return loop_.await(picture_.desktopImage(screen)).file;
    }
    std::optional<std::filesystem::path> capture(const Screen& screen) {
        return loop_.await(picture_.captureDesktopImage(screen));
    }
    DesktopImageOptions options(const Screen& screen) {
        return loop_.await(picture_.desktopImageOptions(screen));
    }

    Desktop desktop_;
    WaitingLoop loop_;
    std::filesystem::path wide_ = desktop_.solidPicture(300, 200, green);
    std::filesystem::path other_ = desktop_.solidPicture(300, 200, yellow);
    std::optional<Xfdesktop> xfdesktop_;
    Bus bus_ = loop_.await(sessionBus());
    ThreadPool pool_{2};
    PpmEncoding encoding_;
    X11DesktopPicture root_{pool_, encoding_, desktop_.folder() / "captures"};
    XfceDesktopPicture picture_{bus_, root_, pool_};
    Screen left_ = desktop_.screen("DUMMY0");
    Screen right_ = desktop_.screen("DUMMY1");
};

TEST_F(XfceDesktopPictureTest, twoMonitorsShowTwoPicturesAndGetBackWhatTheyHad) {
    ASSERT_TRUE(startsWithTwoPictures());
    const std::string before = allSettings();
    EXPECT_EQ(present(left_), wide_);
    const auto rightOptions = options(right_);
    const auto leftOptions = options(left_);

    const auto leftFile = desktop_.solidPicture(1920, 1080, red);
    const auto rightFile = desktop_.solidPicture(1280, 1024, blue);
    sets(leftFile, left_);
    EXPECT_TRUE(shows(red, yellow));
    sets(rightFile, right_);
    EXPECT_TRUE(shows(red, blue));
    EXPECT_EQ(present(left_), leftFile);
    EXPECT_EQ(capture(right_), rightFile);

    sets(other_, right_, rightOptions);
    EXPECT_TRUE(shows(red, yellow));
    sets(wide_, left_, leftOptions);
    EXPECT_TRUE(shows(green, yellow));
    EXPECT_EQ(allSettings(), before);
}

TEST_F(XfceDesktopPictureTest, aStoppedSettingsStoreIsToldAndHoldsUpNothing) {
    const auto answer =
        loop_.await(callOnBus(bus_, {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                     "GetConnectionUnixProcessID", g_variant_new("(s)", "org.xfce.Xfconf")}));
    guint32 process = 0;
    g_variant_get(answer.get(), "(u)", &process);
    const auto file = desktop_.solidPicture(1280, 1024, blue);
    kill(static_cast<pid_t>(process), SIGSTOP);
    int turns = 0;
    const guint timer = g_timeout_add(
        50, +[](gpointer count) -> gboolean { return ++*static_cast<int*>(count), G_SOURCE_CONTINUE; },
        &turns);
    const auto failure = loop_.failureOf(picture_.setDesktopImage({file, nullptr}, right_, {}));
    g_source_remove(timer);
    kill(static_cast<pid_t>(process), SIGCONT);
    EXPECT_EQ(failure, "The picture of DUMMY1 could not be set: xfconf did not answer.");
    EXPECT_GT(turns, 20) << "the main loop stood still";
    sets(file, right_);
    EXPECT_EQ(present(right_), file);
}

TEST_F(XfceDesktopPictureTest, everyWorkspaceShowsThePicture) {
    userSets("monitorDUMMY1/workspace6/last-image", "string -s /nowhere.png");
    user("-p /backdrop/single-workspace-mode -n -t bool -s false");
    userSets("monitorDUMMY1/workspace0/image-style", "int -s 6");
    userSets("monitorDUMMY1/workspace1/image-style", "int -s 4");
    const auto file = desktop_.solidPicture(1280, 1024, blue);
    sets(file, right_);
    EXPECT_THAT(allSettings(), testing::HasSubstr("workspace0/image-style', <5>"));
    EXPECT_THAT(allSettings(), testing::HasSubstr("workspace1/image-style', <4>")) << "it fills the monitor";
    EXPECT_THAT(allSettings(), testing::Not(testing::HasSubstr("workspace2/image-style")));
    for (const std::string workspace : {"0", "1", "2", "3", "6"}) {
        EXPECT_THAT(allSettings(), testing::HasSubstr("monitorDUMMY1/workspace" + workspace +
                                                      "/last-image', <'" + file.string() + "'>"));
    }
    userSets("monitorDUMMY1/workspace2/last-image", "string -s /nowhere.png");
    EXPECT_EQ(present(right_), file);
    ASSERT_EQ(runProgram("xdotool set_desktop 2"), 0);
    EXPECT_TRUE(turnUntil([&] { return !present(right_); }));
    ASSERT_EQ(runProgram("xdotool set_desktop 0"), 0);
    EXPECT_TRUE(turnUntil([&] { return present(right_) == file; }));
}

TEST_F(XfceDesktopPictureTest, aMonitorThatTheDesktopHasNeverSeenIsLeftWithoutSettings) {
    userSets("monitorDUMMY0/workspace0/image-style", "int -s 3");
    const std::string before = allSettings();
    EXPECT_EQ(present(right_), std::nullopt);
    const auto captured = capture(right_);
    ASSERT_TRUE(captured);
    const auto rightOptions = options(right_);
    EXPECT_THAT(
        loop_.failureOf(picture_.setDesktopImage({desktop_.folder() / "none.png", nullptr}, right_, {})),
        testing::HasSubstr("none.png: No such file or directory"));
    EXPECT_EQ(allSettings(), before);
    sets(desktop_.solidPicture(1280, 1024, blue), right_);
    EXPECT_NE(allSettings(), before);
    sets(*captured, right_, rightOptions);
    EXPECT_EQ(allSettings(), before);
}

}  // namespace
}  // namespace quillmar
