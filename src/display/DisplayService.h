#pragma once
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "display/DisplayInfo.h"
#include "platform/Screens.h"

namespace quillmar {

/// Gives persistent IDs to screens.
struct DisplayIdentityResolver {
    struct Candidate {
        std::uint32_t runtimeID = 0;
        std::optional<Uuid> uuid;
    };
    /// Persistent ID by runtime ID. A candidate whose runtime ID is 0, or whose runtime ID or UUID occurs
    /// more than once, or that has no UUID, gets none: settings must never follow a display that might be
    /// another one.
    static std::map<std::uint32_t, std::string> resolve(std::span<const Candidate> candidates);
};

/// A connected display with the screen that it is at present.
struct ConnectedDisplay {
    DisplayInfo info;
    Screen screen;
};

/// The connected displays. A display without a usable identity does not exist for the program.
class DisplayService final : public DisplayProviding {
public:
    explicit DisplayService(const ScreensProviding& screens) : screens_(screens) {}

    std::vector<DisplayInfo> displays() const override;
    std::vector<ConnectedDisplay> connectedDisplays() const;
    /// The screen of a display; nothing when it is not connected.
    std::optional<Screen> screen(const std::string& displayID) const;

private:
    const ScreensProviding& screens_;
};

}  // namespace quillmar
