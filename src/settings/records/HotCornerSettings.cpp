#include "settings/records/HotCornerSettings.h"

#include <algorithm>

namespace quillmar {

const HotCornerActionSettings& HotCornerAssignments::at(HotCornerPosition position) const {
    switch (position) {
        case HotCornerPosition::topLeft: return topLeft;
        case HotCornerPosition::topRight: return topRight;
        case HotCornerPosition::bottomRight: return bottomRight;
        case HotCornerPosition::bottomLeft: break;
    }
    return bottomLeft;
}

HotCornerActionSettings HotCornerSettings::action(const std::string& displayID,
                                                  HotCornerPosition position) const {
    switch (scope) {
        case HotCornerScope::primaryDisplay: return primaryDisplay.at(position);
        case HotCornerScope::combinedDesktop: return combinedDesktop.at(position);
        case HotCornerScope::allDisplays: break;
    }
    const auto entry = std::ranges::find(displays, displayID, &DisplayHotCornerSettings::displayID);
    return entry == displays.end() ? HotCornerActionSettings{} : entry->assignments.at(position);
}

}  // namespace quillmar
