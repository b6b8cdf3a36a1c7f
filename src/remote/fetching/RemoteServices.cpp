#include "remote/fetching/RemoteServices.h"

#include <fmt/format.h>

#include <stdexcept>

#include "base/PublicAddress.h"

namespace quillmar {
namespace {

Url address(const BundleInfo& bundle, std::string_view key) {
    const auto url = Url::parse(bundle.value(key).value_or(""));
    const bool isWebAddress = url && (url->scheme() == "https" || url->scheme() == "http");
    if (!isWebAddress || url->host().empty()) {
        throw std::runtime_error(fmt::format("The bundle key \"{}\" is no web address.", key));
    }
    return *url;
}

}  // namespace

bool RemoteService::isLocal() const { return !mayBePublicHost(host.host()); }

RemoteServices RemoteServices::of(const BundleInfo& bundle) {
    const auto museum = [&](MuseumsSource source, std::string_view key) {
        return RemoteService{std::string(displayText(source)), address(bundle, key)};
    };
    const bool hasArchive = bundle.value("QuillmarAPODArchiveHost").has_value();
    return {
        .userAgent = fmt::format("Quillmar/{} ({})", bundle.semanticVersion("unknown"),
                                 address(bundle, "QuillmarContactPage").string()),
        .apod = {"NASA APOD", address(bundle, "QuillmarAPODHost")},
        .apodArchive = hasArchive ? std::optional(address(bundle, "QuillmarAPODArchiveHost")) : std::nullopt,
        .epic = {"NASA EPIC", address(bundle, "QuillmarEPICHost")},
        .epicArchive = address(bundle, "QuillmarEPICArchiveHost"),
        .wallhaven = {"Wallhaven", address(bundle, "QuillmarWallhavenHost")},
        .unsplash = {"Unsplash", address(bundle, "QuillmarUnsplashHost")},
        .bing = {"Bing", address(bundle, "QuillmarBingHost")},
        .bingWeb = address(bundle, "QuillmarBingWebHost"),
        .windowsSpotlight = {"Windows Spotlight", address(bundle, "QuillmarWindowsSpotlightHost")},
        .museums = {museum(MuseumsSource::artInstituteChicago, "QuillmarArtInstituteChicagoHost"),
                    museum(MuseumsSource::metropolitanMuseum, "QuillmarMetropolitanMuseumHost"),
                    museum(MuseumsSource::rijksmuseum, "QuillmarRijksmuseumHost"),
                    museum(MuseumsSource::clevelandMuseum, "QuillmarClevelandMuseumHost"),
                    museum(MuseumsSource::smkDenmark, "QuillmarSMKDenmarkHost"),
                    museum(MuseumsSource::smithsonian, "QuillmarSmithsonianHost")},
    };
}

}  // namespace quillmar
