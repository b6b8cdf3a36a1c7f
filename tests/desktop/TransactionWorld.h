#pragma once
#include <string>
#include <vector>

#include "async/TaskScope.h"
#include "desktop/Desktop.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeRemoteImageProvider.h"
#include "fakes/FakeScreens.h"
#include "fakes/VirtualLoop.h"
#include "linux/picture/LinuxPictureRendering.h"
#include "wallpaper/WallpaperService.h"
#include "wallpaper/WallpaperSettingsTransactionService.h"

namespace quillmar {

/// The real desktop, but for one screen that complains after it was painted.
class ComplainingDesktop final : public DesktopPicturing {
public:
    ComplainingDesktop(DesktopPicturing& real, std::uint32_t screen) : real_(real), complaining_(screen) {}
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
    void recallDesktopImage(const Screen& screen) override { real_.recallDesktopImage(screen); }

private:
    DesktopPicturing& real_;
    std::uint32_t complaining_;
};

/// A settings transaction on the real desktop, whose right screen complains the first time.
class TransactionWorld {
public:
    TransactionWorld(const Desktop& desktop, DesktopPicturing& real)
        : desktop_(desktop), picture_(real, desktop.screen("DUMMY1").number) {
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

private:
    const Desktop& desktop_;
    VirtualLoop loop_;
    VirtualWallClock clock_{loop_};
    FakeScreens screens_;
    DisplayService displays_{screens_};
    ComplainingDesktop picture_;
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

}  // namespace quillmar
