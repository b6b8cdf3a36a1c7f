#pragma once
#include <memory>

#include "async/Executor.h"
#include "async/WallClock.h"
#include "platform/HTTPSession.h"
#include "platform/PictureRendering.h"
#include "remote/fetching/DownloadFile.h"
#include "remote/fetching/RemoteImageFetching.h"

namespace quillmar {

/// Fetches from picture services within bounds of size and time, and keeps every picture under a name made
/// from its address, so that it is asked for once. Main thread; files and pixels are on the executor.
class RemoteImageFetcher final : public RemoteImageFetching {
public:
    struct Setup {
        std::filesystem::path cache;
        std::filesystem::path temporary;  ///< of this user alone
        std::string userAgent;            ///< how the program names itself to every server
    };
    RemoteImageFetcher(HTTPSession& session, Executor& files, PictureRendering& pictures,
                       const WallClock& clock, Setup setup)
        : session_(session), files_(files), pictures_(pictures), clock_(clock), setup_(std::move(setup)) {}

    const std::filesystem::path& cacheDirectory() const { return setup_.cache; }
    /// Removes what downloads of a process that was killed have left. Before the first download.
    Task<void> removeLeftovers();

    using RemoteImageFetching::downloadImage;
    using RemoteImageFetching::fetchMetadata;
    Task<std::string> fetchMetadata(RemoteService service, Url url,
                                    std::map<std::string, std::string> headers) override;
    Task<std::filesystem::path> downloadImage(RemoteService service, Url url, std::int64_t limit) override;

private:
    using Download = std::shared_ptr<const DownloadFile>;
    using Headers = std::map<std::string, std::string>;
    Headers headersOf(Headers own, std::string accepted) const;
    Task<std::string> fetchMetadataUnsorted(RemoteService service, Url url, Headers headers);
    Task<bool> isInCache(std::filesystem::path file);
    Task<bool> decodes(std::filesystem::path file);
    Task<Download> streamImage(RemoteService service, Url url, std::int64_t limit);
    Task<Download> streamImageUnsorted(RemoteService service, Url url, std::int64_t limit);

    HTTPSession& session_;
    Executor& files_;
    PictureRendering& pictures_;
    const WallClock& clock_;
    const Setup setup_;
};

/// Name of the file that keeps the picture of an address.
std::string remoteImageFileName(const Url& url);

}  // namespace quillmar
