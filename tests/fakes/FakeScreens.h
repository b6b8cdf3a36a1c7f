#pragma once
#include <algorithm>

#include "platform/Screens.h"

namespace quillmar {

/// Screens that a test plugs in and out.
class FakeScreens final : public ScreensProviding {
public:
    std::uint32_t primary = 1;

    void add(Screen screen) { screens_.push_back(std::move(screen)); }
    /// A screen of scale 1 whose UUID ends in `number`.
    void plugIn(std::uint32_t number, CGRectCodable frame = {0, 0, 1920, 1080}) {
        std::array<std::uint8_t, 16> bytes{};
        bytes[15] = static_cast<std::uint8_t>(number);
        add({.number = number,
             .uuid = Uuid(bytes),
             .connector = "FAKE-" + std::to_string(number),
             .localizedName = "Screen " + std::to_string(number),
             .frame = frame,
             .visibleFrame = frame,
             .scaleFactor = 1,
             .area = {static_cast<std::int64_t>(frame.x), static_cast<std::int64_t>(frame.y),
                      static_cast<std::int64_t>(frame.width), static_cast<std::int64_t>(frame.height)}});
    }
    void unplug(std::uint32_t number) {
        std::erase_if(screens_, [&](const Screen& screen) { return screen.number == number; });
    }
    static std::string displayID(std::uint32_t number) {
        return "display:00000000-0000-0000-0000-0000000000" + std::string(number < 16 ? "0" : "") +
               "0123456789abcdef"[number % 16];
    }

    std::vector<Screen> screens() const override { return screens_; }
    std::uint32_t primaryScreenNumber() const override { return primary; }
    void setChangeHandler(std::function<void()> handler) override { onChange = std::move(handler); }
    std::function<void()> onChange;

private:
    std::vector<Screen> screens_;
};

}  // namespace quillmar
