#include <gmock/gmock.h>

#include "async/TaskScope.h"
#include "desktop/Desktop.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeRemoteImageProvider.h"
#include "fakes/FakeScreens.h"
#include "fakes/VirtualLoop.h"
#include "linux/picture/LinuxPictureRendering.h"
#include "linux/x11/X11DesktopPicture.h"
#include "wallpaper/WallpaperService.h"
#include "wallpaper/WallpaperSettingsTransactionService.h"

namespace quillmar {
namespace {

/// The real desktop, but for one screen that complains after it was painted.
class ComplainingDesktop final : public DesktopPicturing {
public:
    ComplainingDesktop(std::filesystem::path captures, std::uint32_t screen)
        : real_(std::move(captures)), complaining_(screen) {}
    bool complains = true;

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& options) override {
        real_.setDesktopImage(file, screen, options);
        if (screen.number == complaining_ && std::exchange(complains, false)) {
            throw std::runtime_error("the screen flickered");
        }
    }
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override {
        return real_.desktopImage(screen);
    }
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override {
        return real_.captureDesktopImage(screen);
    }
    DesktopImageOptions desktopImageOptions(const Screen& screen) override {
        return real_.desktopImageOptions(screen);
    }

private:
    X11DesktopPicture real_;
    std::uint32_t complaining_;
};

class WallpaperTransactionDesktopTest : public testing::Test {
protected:
    WallpaperTransactionDesktopTest() {
        const std::vector<std::pair<std::string, CGRectCodable>> monitors = {
            {"DUMMY0", {0, 0, 1920, 1080}}, {"DUMMY1", {1920, 56, 1280, 1024}}};
        for (const auto& [connector, frame] : monitors) {
            Screen screen = desktop_.screen(connector);
            screen.uuid = Uuid::random();
            screen.frame = screen.visibleFrame = frame;
            screens_.add(std::move(screen));
        }
    }
    WallpaperSettingsTransactionResult applies(const std::vector<std::string>& colors) {
        std::vector<WallpaperApplyRequest> requests;
        for (const DisplayInfo& display : displays_.displays()) {
            requests.push_back({display, {SolidColorPresentationSettings{colors.at(requests.size())}}});
        }
        WallpaperSettingsTransactionResult result;
        tasks_.spawn([](WallpaperSettingsTransactionService* service,
                        std::vector<WallpaperApplyRequest> toApply,
                        WallpaperSettingsTransactionResult* to) -> Task<void> {
            *to = co_await service->applyTransaction(std::move(toApply), {});
        }(&transactions_, std::move(requests), &result));
        loop_.settle();
        return result;
    }

    Desktop desktop_;
    VirtualLoop loop_;
    VirtualWallClock clock_{loop_};
    FakeScreens screens_;
    DisplayService displays_{screens_};
    ComplainingDesktop picture_{desktop_.folder() / "captures", desktop_.screen("DUMMY1").number};
    WallpaperApplicationGate gate_;
    LinuxPictureRendering rendering_;
    WallpaperRenderer renderer_{desktop_.folder() / "cache", rendering_, clock_};
    InlineExecutor executor_;
    CacheFileProtection cacheFiles_;
    FakeRemoteImageProvider remoteImages_{cacheFiles_};
    WallpaperService service_{
        displays_, picture_,    gate_,         renderer_,
        executor_, cacheFiles_, remoteImages_, [](std::size_t) { return std::size_t{0}; }};
    WallpaperSettingsTransactionService transactions_{service_};
    TaskScope tasks_{loop_};
};

TEST_F(WallpaperTransactionDesktopTest, aDisplayThatFailsGetsBackToThePixelWhatAnotherProgramPainted) {
    ASSERT_EQ(runProgram("hsetroot -add '#ff0000' -add '#00ff80' -gradient 35 >/dev/null"), 0);
    const auto before = desktop_.pixels(1920, 0, 1280, 1024);
    const auto result = applies({"#102030", "#A0B0C0"});
    ASSERT_EQ(result.applied.size(), 1u);
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_THAT(result.rollbackFailures, testing::IsEmpty());
    EXPECT_EQ(errorText(result.failures[0].error, GeneralLanguage::english), "the screen flickered");
    EXPECT_THAT(desktop_.pixels(0, 0, 1920, 1080), testing::Each(RgbColor{0x10, 0x20, 0x30}));
    EXPECT_TRUE(desktop_.pixels(1920, 0, 1280, 1024) == before);

    applies({"#102030", "#A0B0C0"});
    EXPECT_THAT(desktop_.pixels(1920, 0, 1280, 1024), testing::Each(RgbColor{0xA0, 0xB0, 0xC0}));
}

}  // namespace
}  // namespace quillmar
