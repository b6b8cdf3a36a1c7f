#include "remote/services/WallhavenService.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

struct WallhavenResponse {
    std::vector<WallhavenImage> data;
    static void describe(auto& self, auto& io) { io.required("data", self.data); }
};

std::string flags(bool first, bool second, bool third) {
    return fmt::format("{:d}{:d}{:d}", first, second, third);
}

void addUnlessEmpty(std::vector<QueryItem>& items, std::string name, std::string value) {
    if (!value.empty()) items.emplace_back(std::move(name), std::move(value));
}

}  // namespace

std::vector<WallhavenImage> parseWallhaven(std::string_view json) {
    return json::decode<WallhavenResponse>(json).data;
}

Url wallhavenRequest(const Url& host, const WallhavenSettings& s) {
    std::vector<QueryItem> items = {
        {"categories", flags(s.includeGeneral, s.includeAnime, s.includePeople)},
        {"purity", flags(s.includeSafe, s.includeSketchy, s.includeNSFW)},
        {"sorting", std::string(enumName(s.sorting))},
        {"order", std::string(enumName(s.order))},
    };
    addUnlessEmpty(items, "q", std::string(trimmed(s.searchQuery)));
    addUnlessEmpty(items, "colors", s.color.value_or(""));
    if (s.resolutionMode == WallhavenResolutionMode::atleast) {
        addUnlessEmpty(items, "atleast", s.resolution.value_or(""));
    }
    if (s.resolutionMode == WallhavenResolutionMode::exactly) {
        addUnlessEmpty(items, "resolutions", fmt::format("{}", fmt::join(s.exactResolutions, ",")));
    }
    addUnlessEmpty(items, "ratios", fmt::format("{}", fmt::join(s.ratios, ",")));
    if (s.sorting == WallhavenSorting::toplist) {
        items.emplace_back("topRange", std::string(enumName(s.topRange)));
    }
    addUnlessEmpty(items, "apikey", std::string(trimmed(s.apiKey)));
    return appendingQueryItems(appendingPath(host, "/api/v1/search"), items);
}

Task<RemotePicture> WallhavenService::resolve(WallhavenSettings settings) {
    const RemoteImageProviderError unusable(RemoteImageProviderError::Case::noUsableImage, service_.name);
    const auto images =
        understood(service_, parseWallhaven,
                   co_await fetching_.fetchMetadata(service_, wallhavenRequest(service_.host, settings)));
    if (images.empty()) throw unusable;
    const WallhavenImage& image = images[randomIndex_(images.size())];
    const auto url = Url::parse(image.path);
    if (!url) throw unusable;
    co_return RemotePicture{.image = co_await fetching_.downloadImage(service_, *url),
                            .sourceDescription = image.shortURL.value_or("Wallhaven"),
                            .credit = {.sourceURL = webAddressText(image.shortURL)}};
}

}  // namespace quillmar
