#pragma once
#include <array>
#include <optional>
#include <string>

#include "base/BundleInfo.h"
#include "base/Url.h"
#include "modes/MuseumsSettings.h"

namespace quillmar {

/// A picture service as it is configured.
struct RemoteService {
    std::string name;  ///< for people: the provider text of messages
    Url host;          ///< scheme and host, and port where it has one of its own

    /// Whether the configuration itself leads to this machine or its network, as in a test.
    bool isLocal() const;
    bool operator==(const RemoteService&) const = default;
};

/// Where the services are, of the bundle keys.
struct RemoteServices {
    std::string userAgent;  ///< how the program names itself to them, with a page to reach its makers by
    RemoteService apod;
    std::optional<Url> apodArchive;  ///< of the service's former interface, where that is still asked
    RemoteService epic;
    Url epicArchive;
    RemoteService wallhaven;
    RemoteService unsplash;
    RemoteService bing;
    Url bingWeb;  ///< what the addresses of its pictures are relative to
    RemoteService windowsSpotlight;
    std::array<RemoteService, enumNames(MuseumsSource{}).size()> museums;

    const RemoteService& museum(MuseumsSource source) const {
        return museums[static_cast<std::size_t>(source)];
    }
    /// Throws `std::runtime_error` for a key that is missing or no web address.
    static RemoteServices of(const BundleInfo& bundle);
};

}  // namespace quillmar
