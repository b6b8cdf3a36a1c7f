#include "remote/services/UnsplashService.h"

#include <algorithm>
#include <cmath>

#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/fetching/ServiceText.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

struct Urls {
    std::optional<std::string> raw;
    std::string full;
    static void describe(auto& self, auto& io) { io.optional("raw", self.raw).required("full", self.full); }
};
struct Links {
    std::string downloadLocation;
    std::optional<std::string> html;
    static void describe(auto& self, auto& io) {
        io.required("download_location", self.downloadLocation).optional("html", self.html);
    }
};
struct User {
    std::optional<std::string> name;
    static void describe(auto& self, auto& io) { io.optional("name", self.name); }
};
struct UnsplashResponse {
    Urls urls;
    Links links;
    User user;
    std::optional<std::string> description;
    std::optional<std::string> altDescription;
    static void describe(auto& self, auto& io) {
        io.required("urls", self.urls)
            .required("links", self.links)
            .required("user", self.user)
            .optional("description", self.description)
            .optional("alt_description", self.altDescription);
    }
};

std::string creditOf(const UnsplashResponse& photo) {
    const auto& text = photo.description ? photo.description : photo.altDescription;
    if (!photo.user.name) return text.value_or("Unsplash");
    return text.value_or("Unsplash photo") + " — " + *photo.user.name;
}

}  // namespace

UnsplashPhoto parseUnsplash(std::string_view json) {
    const auto photo = json::decode<UnsplashResponse>(json);
    return {.sourceURL = photo.urls.raw.value_or(photo.urls.full),
            .downloadLocation = photo.links.downloadLocation,
            .title = photo.description ? photo.description : photo.altDescription,
            .author = photo.user.name,
            .page = photo.links.html,
            .credit = creditOf(photo)};
}

Url unsplashRequest(const Url& host, const UnsplashSettings& settings) {
    const char* const filter = settings.filter == UnsplashFilter::topic  ? "topics"
                               : settings.filter == UnsplashFilter::user ? "username"
                                                                         : "query";
    return appendingQueryItems(
        appendingPath(host, "/photos/random"),
        {{"orientation", "landscape"}, {filter, std::string(trimmed(settings.filterValue()))}});
}

Task<RemotePicture> UnsplashService::resolve(UnsplashSettings settings, double widthInPixels) {
    const std::map<std::string, std::string> headers = {
        {"Authorization", "Client-ID " + std::string(trimmed(settings.accessKey))}, {"Accept-Version", "v1"}};
    const UnsplashPhoto photo = understood(
        service_, parseUnsplash,
        co_await fetching_.fetchMetadata(service_, unsplashRequest(service_.host, settings), headers));
    const auto source = Url::parse(photo.sourceURL);
    if (!source) throw RemoteImageProviderError(RemoteImageProviderError::Case::noUsableImage, service_.name);
    const long long width = std::max(std::llround(widthInPixels), 1LL);
    const Url image =
        appendingQueryItems(*source, {{"auto", "format"}, {"fit", "max"}, {"w", std::to_string(width)}});
    co_await countDownload(photo.downloadLocation, headers);
    RemotePicture picture{.image = co_await fetching_.downloadImage(service_, image),
                          .sourceDescription = photo.credit,
                          .credit = {.title = unlessBlank(photo.title),
                                     .author = unlessBlank(photo.author),
                                     .sourceURL = webAddressText(photo.page),
                                     .licence = "Unsplash License"}};
    if (settings.showsAttribution) {
        picture.overlayCaption =
            captionOf({photo.title.value_or(""), photo.author.value_or(""), service_.name});
    }
    co_return picture;
}

/// The service asks for it: every use of a photograph is told to it.
Task<void> UnsplashService::countDownload(std::string location, std::map<std::string, std::string> headers) {
    const auto url = Url::parse(location);
    if (!url) co_return;
    try {
        co_await fetching_.fetchMetadata(service_, *url, std::move(headers));
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // The picture is there all the same.
    }
}

}  // namespace quillmar
