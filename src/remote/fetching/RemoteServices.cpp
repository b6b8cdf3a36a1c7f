#include "remote/fetching/RemoteServices.h"

#include <fmt/format.h>

#include <stdexcept>

#include "base/HostName.h"
#include "base/Text.h"

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

bool isPrivateIPv4(const std::string& host) {
    for (const std::string_view prefix : {"127.", "10.", "192.168.", "169.254.", "0."}) {
        if (host.starts_with(prefix)) return true;
    }
    if (!host.starts_with("172.")) return false;
    const int second = std::atoi(host.c_str() + 4);
    return second >= 16 && second <= 31;
}

}  // namespace

bool RemoteService::isLocal() const {
    const std::string name_ = lowercased(host.host());
    const bool isNumeric = name_.find_first_not_of("0123456789.") == std::string::npos;
    if (isNumeric) return isPrivateIPv4(name_);
    if (name_.find(':') != std::string::npos) {
        return name_ == "::1" || name_.starts_with("fe80:") || name_.starts_with("fc") ||
               name_.starts_with("fd");
    }
    return isLocalHostName(name_);
}

RemoteServices RemoteServices::of(const BundleInfo& bundle) {
    const auto museum = [&](MuseumsSource source, std::string_view key) {
        return RemoteService{std::string(displayText(source)), address(bundle, key)};
    };
    return {
        .apod = {"NASA APOD", address(bundle, "QuillmarAPODHost")},
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
