#include "control/DisplayList.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/JsonRecord.h"
#include "base/Text.h"
#include "control/CommandError.h"

namespace quillmar {
namespace {

struct DisplayList {
    std::string version;
    std::vector<DisplayInfo> displays;

    static void describe(auto& self, auto& io) {
        io.required("version", self.version).required("displays", self.displays);
    }
};

DisplayIDs idsOf(const std::vector<DisplayInfo>& displays) {
    DisplayIDs ids;
    for (const DisplayInfo& display : displays) ids.insert(display.id);
    return ids;
}

}  // namespace

DisplayIDs displaysCalled(const std::string& name, std::vector<DisplayInfo> displays) {
    if (name == "all") return idsOf(displays);
    std::erase_if(displays, [&](const DisplayInfo& display) {
        return display.id != name && lowercased(display.localizedName) != lowercased(name) &&
               !(name == "main" && display.isMain);
    });
    if (displays.empty()) throw CommandError("No display \"%@\" is connected."_key, {name});
    if (displays.size() > 1) throw CommandError("Several displays are called \"%@\"; use an ID."_key, {name});
    return idsOf(displays);
}

std::string displaysAsText(const std::vector<DisplayInfo>& displays, GeneralLanguage language) {
    if (displays.empty()) return localized("No display is connected."_key, language) + "\n";
    std::size_t nameWidth = 0;
    for (const DisplayInfo& display : displays) nameWidth = std::max(nameWidth, display.localizedName.size());
    std::string text;
    for (const DisplayInfo& display : displays) {
        const CGRectCodable& frame = display.frame;
        text +=
            fmt::format("{} {}  {:<{}}  {:g}x{:g}{:+g}{:+g}  {}\n", display.isMain ? '*' : ' ', display.id,
                        display.localizedName, nameWidth, frame.width, frame.height, frame.x, frame.y,
                        localized("scale %@"_key, language, {fmt::format("{:g}", display.scaleFactor)}));
    }
    return text;
}

std::string displaysAsJson(std::vector<DisplayInfo> displays, const std::string& version) {
    return json::encode(DisplayList{version, std::move(displays)});
}

}  // namespace quillmar
