#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "modes/DailyImageSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

struct BingImage {
    std::string url;                     ///< relative to the service's web host, of a small picture
    std::optional<std::string> urlBase;  ///< what the names of all its sizes begin with
    std::optional<std::string> title;
    std::optional<std::string> copyright;

    /// The address of the largest size that there is.
    std::string largest() const { return urlBase ? *urlBase + "_UHD.jpg" : url; }
    static void describe(auto& self, auto& io) {
        io.required("url", self.url)
            .optional("urlbase", self.urlBase)
            .optional("title", self.title)
            .optional("copyright", self.copyright);
    }
};
/// Throws `JsonRecordError`.
std::vector<BingImage> parseBing(std::string_view json);
Url bingRequest(const Url& host, const BingSettings& settings);

/// Bing's picture of the day. Main thread.
class BingService {
public:
    BingService(RemoteImageFetching& fetching, RemoteService service, Url webHost)
        : fetching_(fetching), service_(std::move(service)), webHost_(std::move(webHost)) {}
    Task<RemotePicture> resolve(BingSettings settings);

private:
    RemoteImageFetching& fetching_;
    const RemoteService service_;
    const Url webHost_;
};

}  // namespace quillmar
