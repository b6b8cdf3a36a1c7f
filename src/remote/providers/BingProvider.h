#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "modes/DailyImageSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/providers/RemotePicture.h"

namespace quillmar {

struct BingImage {
    std::string url;  ///< relative to the service's web host
    std::optional<std::string> copyright;

    static void describe(auto& self, auto& io) {
        io.required("url", self.url).optional("copyright", self.copyright);
    }
};
/// Throws `JsonRecordError`.
std::vector<BingImage> parseBing(std::string_view json);
Url bingRequest(const Url& host, const BingSettings& settings);

/// Bing's picture of the day. Main thread.
class BingProvider {
public:
    BingProvider(RemoteImageFetching& fetching, RemoteService service, Url webHost)
        : fetching_(fetching), service_(std::move(service)), webHost_(std::move(webHost)) {}
    Task<RemotePicture> resolve(BingSettings settings);

private:
    RemoteImageFetching& fetching_;
    const RemoteService service_;
    const Url webHost_;
};

}  // namespace quillmar
