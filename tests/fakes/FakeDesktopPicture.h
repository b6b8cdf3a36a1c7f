#pragma once
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/DesktopPicture.h"

namespace quillmar {

/// A desktop that remembers which file each screen shows, and refuses when told to.
class FakeDesktopPicture final : public DesktopPicturing {
public:
    std::map<std::uint32_t, std::filesystem::path> shown;
    std::map<std::uint32_t, DesktopImageOptions> options;
    std::map<std::uint32_t, std::filesystem::path> remembered;  ///< of the last session
    std::vector<std::uint32_t> recalled;
    int setCount = 0;

    void refuses(std::uint32_t screen, std::string reason) { refusals_[screen] = std::move(reason); }
    void accepts(std::uint32_t screen) { refusals_.erase(screen); }

    void setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                         const DesktopImageOptions& imageOptions) override {
        if (const auto refusal = refusals_.find(screen.number); refusal != refusals_.end()) {
            throw std::runtime_error(refusal->second);
        }
        ++setCount;
        shown[screen.number] = file;
        options[screen.number] = imageOptions;
    }
    std::optional<std::filesystem::path> desktopImage(const Screen& screen) override {
        const auto found = shown.find(screen.number);
        if (found == shown.end()) return std::nullopt;
        return found->second;
    }
    std::optional<std::filesystem::path> captureDesktopImage(const Screen& screen) override {
        return desktopImage(screen);
    }
    DesktopImageOptions desktopImageOptions(const Screen& screen) override { return options[screen.number]; }
    void recallDesktopImage(const Screen& screen) override {
        recalled.push_back(screen.number);
        if (const auto last = remembered.find(screen.number); last != remembered.end()) shown.insert(*last);
    }

private:
    std::map<std::uint32_t, std::string> refusals_;
};

}  // namespace quillmar
