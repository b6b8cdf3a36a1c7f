#pragma once
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "async/WaitList.h"
#include "platform/DesktopPicture.h"
#include "platform/DesktopPictureError.h"

namespace quillmar {

/// A desktop that remembers which file each screen shows, and refuses or does not answer when told to.
class FakeDesktopPicture final : public DesktopPicturing, public DesktopChoosing {
public:
    std::map<std::uint32_t, std::filesystem::path> shown;
    std::map<std::uint32_t, DesktopImageOptions> options;
    std::map<std::uint32_t, SharedPixels> pixels;  ///< that the last picture came with
    std::vector<std::uint32_t> set;                ///< screens, in the order in which they were set
    int setCount = 0;
    bool wantsPixels = true;

    void refuses(std::uint32_t screen, std::string reason) { refusals_[screen] = std::move(reason); }
    void accepts(std::uint32_t screen) { refusals_.erase(screen); }
    /// As when its monitor was unplugged.
    void forgets(std::uint32_t screen) { forgotten_.insert(screen); }
    void hold() { isHeld_ = true; }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

    Task<DesktopMethods> methods() override { co_return DesktopMethods{*this}; }
    bool takesPixels() const override { return wantsPixels; }
    Task<void> setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions imageOptions) override {
        while (isHeld_) co_await held_.wait();
        if (wantsPixels && !image.pixels) throw std::logic_error("no pixels");
        const auto refusal = refusals_.find(screen.number);
        if (refusal != refusals_.end()) {
            if (!wantsPixels) shown[screen.number] = "/half/changed.png";
            const std::string reason = refusal->second;
            if (!wantsPixels) refusals_.erase(refusal);  // the way back is open
            throw DesktopPictureError(DesktopPictureError::Case::refused, "the desktop", screen.connector,
                                      reason);
        }
        ++setCount;
        set.push_back(screen.number);
        shown[screen.number] = image.file;
        pixels[screen.number] = image.pixels;
        options[screen.number] = std::move(imageOptions);
        forgotten_.erase(screen.number);
    }
    Task<PresentDesktopImage> desktopImage(Screen screen) override {
        while (isHeld_) co_await held_.wait();
        const bool isForgotten = forgotten_.contains(screen.number);
        const auto found = shown.find(screen.number);
        if (found == shown.end() || isForgotten) co_return PresentDesktopImage{{}, isForgotten};
        co_return PresentDesktopImage{found->second, false};
    }
    Task<std::optional<std::filesystem::path>> captureDesktopImage(Screen screen) override {
        co_return (co_await desktopImage(screen)).file;
    }
    Task<DesktopImageOptions> desktopImageOptions(Screen screen) override {
        co_return options[screen.number];
    }

private:
    std::map<std::uint32_t, std::string> refusals_;
    std::set<std::uint32_t> forgotten_;
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
