#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "modes/SearchImageSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

struct UnsplashPhoto {
    std::string sourceURL;
    std::string downloadLocation;
    std::optional<std::string> title;
    std::optional<std::string> author;
    std::optional<std::string> page;
    std::string credit;  ///< what the photograph shows and whose it is
};
/// Throws `JsonRecordError`.
UnsplashPhoto parseUnsplash(std::string_view json);
Url unsplashRequest(const Url& host, const UnsplashSettings& settings);

/// A random photograph of Unsplash. Main thread.
class UnsplashService {
public:
    UnsplashService(RemoteImageFetching& fetching, RemoteService service)
        : fetching_(fetching), service_(std::move(service)) {}
    /// `widthInPixels` of the display, before rounding.
    Task<RemotePicture> resolve(UnsplashSettings settings, double widthInPixels);

private:
    Task<void> countDownload(std::string location, std::map<std::string, std::string> headers);

    RemoteImageFetching& fetching_;
    const RemoteService service_;
};

}  // namespace quillmar
