#include "remote/services/BingService.h"

#include "base/JsonRecord.h"
#include "base/UrlEditing.h"
#include "remote/fetching/ServiceText.h"
#include "remote/services/ServiceAnswer.h"

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

Task<RemotePicture> BingService::resolve(BingSettings settings) {
    const RemoteImageProviderError unusable(RemoteImageProviderError::Case::noUsableImage, service_.name);
    const auto images =
        understood(service_, parseBing,
                   co_await fetching_.fetchMetadata(service_, bingRequest(service_.host, settings)));
    if (images.empty()) throw unusable;
    const BingImage& image = images.front();
    const Url root = appendingPath(webHost_, "/");
    const auto url = resolvedReference(root, image.largest());
    if (!url) throw unusable;
    RemotePicture picture{.image = co_await fetching_.downloadImage(service_, *url),
                          .sourceDescription = image.copyright,
                          .credit = {.title = unlessBlank(image.title),
                                     .sourceURL = root.string(),
                                     .licence = unlessBlank(image.copyright)}};
    if (settings.showsCopyright) {
        picture.overlayCaption = captionOf({image.title.value_or(""), image.copyright.value_or("")});
    }
    co_return picture;
}

}  // namespace quillmar
