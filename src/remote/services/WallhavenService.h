#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/RandomIndex.h"
#include "modes/SearchImageSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

struct WallhavenImage {
    std::string path;
    std::optional<std::string> shortURL;

    static void describe(auto& self, auto& io) {
        io.required("path", self.path).optional("short_url", self.shortURL);
    }
};
/// Throws `JsonRecordError`.
std::vector<WallhavenImage> parseWallhaven(std::string_view json);
Url wallhavenRequest(const Url& host, const WallhavenSettings& settings);

/// A picture of a search in Wallhaven. Main thread.
class WallhavenService {
public:
    WallhavenService(RemoteImageFetching& fetching, RemoteService service, RandomIndex randomIndex)
        : fetching_(fetching), service_(std::move(service)), randomIndex_(std::move(randomIndex)) {}
    Task<RemotePicture> resolve(WallhavenSettings settings);

private:
    RemoteImageFetching& fetching_;
    const RemoteService service_;
    RandomIndex randomIndex_;
};

}  // namespace quillmar
