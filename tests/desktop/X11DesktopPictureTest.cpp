#include "linux/x11/X11DesktopPicture.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "desktop/Desktop.h"
#include "desktop/WaitingLoop.h"

namespace quillmar {
namespace {

using testing::Each;

constexpr RgbColor red{200, 10, 20};
constexpr RgbColor blue{10, 20, 200};
constexpr RgbColor black{0, 0, 0};
constexpr RgbColor foreign{0x12, 0x34, 0x56};
constexpr PresentDesktopImage forgotten{.file = std::nullopt, .isForgotten = true};

/// The number of the X server's display.
int displayNumber() { return std::atoi(std::getenv("DISPLAY") + 1); }

class X11DesktopPictureTest : public testing::Test {
protected:
    void paintsAnotherProgram(const std::string& what = "-solid '#123456'") {
        ASSERT_EQ(runProgram("hsetroot " + what + " >/dev/null"), 0);
    }
    std::filesystem::path paints(const Screen& screen, RgbColor color, int width, int height) {
        const auto file = desktop_.folder() / (Uuid::random().string() + ".png");
        std::ofstream{file};
        loop_.await(picture_->setDesktopImage({file, solidPixels(width, height, color)}, screen, {}));
        return file;
    }
    std::filesystem::path paints(RgbColor color, const Screen& screen) {
        return paints(screen, color, static_cast<int>(screen.area.width),
                      static_cast<int>(screen.area.height));
    }
    PresentDesktopImage present(const Screen& screen) { return loop_.await(picture_->desktopImage(screen)); }
    std::filesystem::path capture(const Screen& screen) {
        return loop_.await(picture_->captureDesktopImage(screen)).value();
    }
    void shows(const std::filesystem::path& captured, const Screen& screen) {
        loop_.await(picture_->setDesktopImage({captured, ppmPixels(captured)}, screen, {}));
    }

    Desktop desktop_;
    WaitingLoop loop_;
    ThreadPool pool_{2};
    PpmEncoding encoding_;
    std::unique_ptr<X11DesktopPicture> picture_ =
        std::make_unique<X11DesktopPicture>(pool_, encoding_, desktop_.folder() / "captures");
    Screen left_ = desktop_.screen("DUMMY0");
    Screen right_ = desktop_.screen("DUMMY1");
};

TEST_F(X11DesktopPictureTest, eachMonitorHasAPictureOfItsOwn) {
    paintsAnotherProgram();
    const auto leftFile = paints(red, left_);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(foreign));
    EXPECT_EQ(present(right_), forgotten);

    const auto rightFile = paints(blue, right_);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(blue));
    EXPECT_EQ(desktop_.pixel(3000, 1060), foreign);
    EXPECT_EQ(present(left_), PresentDesktopImage{leftFile});
    picture_ = std::make_unique<X11DesktopPicture>(pool_, encoding_, desktop_.folder());
    EXPECT_EQ(present(right_), PresentDesktopImage{rightFile});

    std::filesystem::remove(rightFile);
    EXPECT_EQ(present(right_), PresentDesktopImage{});
    const auto captured = capture(right_);
    paints(red, right_);
    shows(captured, right_);
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(blue));
}

TEST_F(X11DesktopPictureTest, aPictureOfAnotherSizeLiesTopLeftAndIsClipped) {
    paints(blue, left_);
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
    EXPECT_EQ(present(left_), PresentDesktopImage{});
    EXPECT_FALSE(std::filesystem::exists(desktop_.folder() / "captures"));
    const auto left = capture(left_);
    const auto right = capture(right_);
    EXPECT_THAT(left.filename().string(), testing::MatchesRegex("captured-DUMMY0-1920x[0-9a-f]+\\.png"));
    EXPECT_EQ(capture(left_), left);

    paints(red, left_);
    paints(blue, right_);
    shows(left, left_);
    shows(right, right_);
    EXPECT_TRUE(desktop_.pixels(0, 0, 3200, 1080) == before);
}

TEST_F(X11DesktopPictureTest, aFileIsNotTakenForThePictureThatAnotherProgramHasSetSince) {
    paints(red, left_);
    // Often: the server gives the same ids out again.
    for (int i = 0; i < 6; ++i) {
        paintsAnotherProgram();
        EXPECT_EQ(present(left_), PresentDesktopImage{}) << i;
    }
    paints(blue, right_);
    EXPECT_EQ(present(left_), forgotten);
    EXPECT_EQ(desktop_.pixel(5, 5), foreign);
}

TEST_F(X11DesktopPictureTest, aDesktopThatNobodyHasPaintedIsForgottenAndTakenBackToBlack) {
    for (const std::string property :
         {"-remove _XROOTPMAP_ID", "-f _XROOTPMAP_ID 32x -set _XROOTPMAP_ID 0x7654321"}) {
        ASSERT_EQ(runProgram("xprop -root " + property), 0);
        EXPECT_EQ(present(left_), forgotten);
        const auto before = capture(left_);
        paints(red, left_);
        EXPECT_EQ(desktop_.pixel(0, 0), red);
        shows(before, left_);
        EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(black));
    }
}

TEST_F(X11DesktopPictureTest, theDesktopMayGrowAndShrinkBetweenPictures) {
    paints(red, left_);
    paints(blue, right_);
    desktop_.arrange("--output DUMMY1 --off");
    for (const Screen& absent : {right_, Screen{.connector = "DUMMY1"}}) {
        const std::string reason = "The display DUMMY1 is no longer connected.";
        EXPECT_EQ(loop_.failureOf(picture_->setDesktopImage({"/a.png", solidPixels(9, 9, red)}, absent, {})),
                  reason);
        EXPECT_EQ(loop_.failureOf(picture_->desktopImage(absent)), reason);
        EXPECT_EQ(loop_.failureOf(picture_->captureDesktopImage(absent)), reason);
    }
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(red));
    paints(blue, left_);
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(blue));
    desktop_.arrange("--output DUMMY1 --mode 1280x1024 --pos 1920x56");
    EXPECT_EQ(present(right_), forgotten);
    paints(red, right_);
    EXPECT_THAT(desktop_.pixels(1920, 56, 1280, 1024), Each(red));
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), Each(blue));
}

TEST_F(X11DesktopPictureTest, theServersMemoryDoesNotGrow) {
    paints(red, left_);
    paints(blue, right_);
    const auto before = desktop_.memory();
    std::filesystem::path last;
    for (int i = 0; i < 100; ++i) {
        last = paints(red, left_);
        paints(blue, right_);
    }
    loop_.failureOf(picture_->desktopImage({}));
    EXPECT_EQ(desktop_.memory(), before);
    EXPECT_EQ(present(left_).file, last);
}

/// Hands the bytes of one connection on to the X server, and drops the files that go with them: as a proxy
/// from another machine or container does.
class FilelessProxy {
public:
    explicit FilelessProxy(int display) : path_("/tmp/.X11-unix/X" + std::to_string(display)) {
        const sockaddr_un address = addressOf(path_);
        if (bind(listening_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(listening_.get(), 1) != 0) {
            throw std::runtime_error("the proxy's socket is in use");
        }
        work_ = std::jthread([this] { carry(); });
    }
    ~FilelessProxy() { std::filesystem::remove(path_); }

private:
    static sockaddr_un addressOf(const std::string& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        return address;
    }
    static void copy(int from, int to) {
        char bytes[65536];
        for (ssize_t count = 0; (count = read(from, bytes, sizeof bytes)) > 0;) {
            for (ssize_t sent = 0, now = 0; sent < count && now >= 0; sent += now) {
                now = send(to, bytes + sent, static_cast<std::size_t>(count - sent), MSG_NOSIGNAL);
            }
        }
        shutdown(to, SHUT_RDWR);
    }
    void carry() {
        const FileDescriptor client(accept(listening_.get(), nullptr, nullptr));
        const FileDescriptor server(socket(AF_UNIX, SOCK_STREAM, 0));
        const sockaddr_un address = addressOf("/tmp/.X11-unix/X" + std::to_string(displayNumber()));
        if (connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return;
        const std::jthread answers([&] { copy(server.get(), client.get()); });
        copy(client.get(), server.get());
    }

    std::string path_;
    FileDescriptor listening_{socket(AF_UNIX, SOCK_STREAM, 0)};
    std::jthread work_;
};

TEST_F(X11DesktopPictureTest, aServerThatSharesNoMemoryIsPaintedTheSlowWay) {
    const int display = displayNumber() + 1000;
    const FilelessProxy proxy(display);
    picture_ = std::make_unique<X11DesktopPicture>(pool_, encoding_, "", ":" + std::to_string(display));
    paints(red, right_);
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), Each(red));
}

TEST_F(X11DesktopPictureTest, aStoppedServerHoldsUpNeitherTheMainLoopNorTheEnd) {
    const int server = desktop_.serverProcess();
    kill(server, SIGSTOP);
    const auto pixels = solidPixels(1280, 1024, red);
    const auto failure = loop_.failureOf(picture_->setDesktopImage({"/a.png", pixels}, right_, {}));
    EXPECT_EQ(failure, "The picture of DUMMY1 could not be set: the X server did not answer.");
    {
        TaskScope tasks(loop_.loop());
        tasks.spawn(picture_->setDesktopImage({"/a.png", pixels}, right_, {}));
        bool hasTurned = false;
        loop_.loop().post([&] { hasTurned = true; });
        EXPECT_TRUE(turnUntil([&] { return hasTurned; }));
    }
    picture_.reset();
    kill(server, SIGCONT);
}

}  // namespace
}  // namespace quillmar
