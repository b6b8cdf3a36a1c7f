#include "display/DisplayService.h"

namespace quillmar {

std::map<std::uint32_t, std::string> DisplayIdentityResolver::resolve(std::span<const Candidate> candidates) {
    std::map<Uuid, int> uuidCounts;
    std::map<std::uint32_t, int> runtimeCounts;
    for (const Candidate& candidate : candidates) {
        if (candidate.uuid) ++uuidCounts[*candidate.uuid];
        ++runtimeCounts[candidate.runtimeID];
    }
    std::map<std::uint32_t, std::string> ids;
    for (const auto& [runtimeID, uuid] : candidates) {
        if (runtimeID == 0 || runtimeCounts[runtimeID] != 1 || !uuid || uuidCounts[*uuid] != 1) continue;
        ids.emplace(runtimeID, "display:" + uuid->lowercaseString());
    }
    return ids;
}

namespace {

std::optional<PixelSize> pixelSizeOf(const Screen& screen) {
    const PixelRect& area = screen.area;
    if (area.width < 1 || area.height < 1) return std::nullopt;
    return PixelSize{static_cast<int>(area.width), static_cast<int>(area.height)};
}

}  // namespace

std::vector<ConnectedDisplay> DisplayService::connectedDisplays() const {
    const std::vector<Screen> screens = screens_.screens();
    std::vector<DisplayIdentityResolver::Candidate> candidates;
    for (const Screen& screen : screens) candidates.push_back({screen.number, screen.uuid});
    const auto ids = DisplayIdentityResolver::resolve(candidates);

    const std::uint32_t primary = screens_.primaryScreenNumber();
    std::vector<ConnectedDisplay> displays;
    for (const Screen& screen : screens) {
        const auto id = ids.find(screen.number);
        if (id == ids.end()) continue;
        displays.push_back({{.id = id->second,
                             .localizedName = screen.localizedName,
                             .frame = screen.frame,
                             .visibleFrame = screen.visibleFrame,
                             .scaleFactor = screen.scaleFactor,
                             .isMain = screen.number == primary,
                             .pixelSize = pixelSizeOf(screen)},
                            screen});
    }
    return displays;
}

std::vector<DisplayInfo> DisplayService::displays() const {
    std::vector<DisplayInfo> infos;
    for (ConnectedDisplay& display : connectedDisplays()) infos.push_back(std::move(display.info));
    return infos;
}

std::optional<Screen> DisplayService::screen(const std::string& displayID) const {
    for (ConnectedDisplay& display : connectedDisplays()) {
        if (display.info.id == displayID) return std::move(display.screen);
    }
    return std::nullopt;
}

}  // namespace quillmar
