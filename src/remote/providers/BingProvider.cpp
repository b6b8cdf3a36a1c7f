#include "remote/providers/BingProvider.h"

#include "base/JsonRecord.h"
#include "base/UrlEditing.h"
#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {
namespace {

struct BingResponse {
    std::vector<BingImage> images;
    static void describe(auto& self, auto& io) { io.required("images", self.images); }
};

}  // namespace

std::vector<BingImage> parseBing(std::string_view json) { return json::decode<BingResponse>(json).images; }

Url bingRequest(const Url& host, const BingSettings& settings) {
    return appendingQueryItems(appendingPath(host, "/HPImageArchive.aspx"),
                               {{"format", "js"}, {"idx", "0"}, {"n", "1"}, {"mkt", settings.market}});
}

Task<RemotePicture> BingProvider::resolve(BingSettings settings) {
    const RemoteImageProviderError unusable(RemoteImageProviderError::Case::noUsableImage, service_.name);
    const auto images =
        parseBing(co_await fetching_.fetchMetadata(service_, bingRequest(service_.host, settings)));
    if (images.empty()) throw unusable;
    const auto url = resolvedReference(appendingPath(webHost_, "/"), images.front().url);
    if (!url) throw unusable;
    co_return RemotePicture{.image = co_await fetching_.downloadImage(service_, *url),
                            .sourceDescription = images.front().copyright};
}

}  // namespace quillmar
