#pragma once
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "async/Task.h"
#include "remote/fetching/RemoteServices.h"

namespace quillmar {

/// What the services need of the network: bounded answers and pictures in the cache. Main thread. Every
/// operation throws `RemoteImageProviderError`, or `CancellationError` when the task was cancelled.
class RemoteImageFetching {
public:
    static constexpr std::int64_t maximumImageBytes = 31457280;
    static constexpr std::int64_t maximumMetadataBytes = 5242880;

    virtual ~RemoteImageFetching() = default;
    /// The body of a successful answer, of fewer than `maximumMetadataBytes`. A "User-Agent" of the service's
    /// own stands before the program's.
    virtual Task<std::string> fetchMetadata(RemoteService service, Url url,
                                            std::map<std::string, std::string> headers) = 0;
    /// A validated picture in the cache: the one that lies there, else downloaded now. The caller holds a
    /// lease on the cache folder meanwhile.
    virtual Task<std::filesystem::path> downloadImage(RemoteService service, Url url, std::int64_t limit) = 0;

    Task<std::string> fetchMetadata(RemoteService service, Url url) {
        return fetchMetadata(std::move(service), std::move(url), {});
    }
    Task<std::filesystem::path> downloadImage(RemoteService service, Url url) {
        return downloadImage(std::move(service), std::move(url), maximumImageBytes);
    }
};

}  // namespace quillmar
