#include "control/DisplayList.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

struct DisplayList {
    std::string version;
    std::vector<DisplayInfo> displays;

    static void describe(auto& self, auto& io) {
        io.required("version", self.version).required("displays", self.displays);
    }
};

}  // namespace

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
