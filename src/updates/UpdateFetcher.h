#pragma once
#include <memory>

#include "async/Executor.h"
#include "platform/HTTPSession.h"
#include "remote/fetching/DownloadFile.h"
#include "updates/Appcast.h"
#include "updates/SoftwareUpdateConfiguration.h"

namespace quillmar {

/// Fetches the list of versions and their files, within bounds of size and time, from nowhere but secure
/// addresses. Main thread. Everything throws `SoftwareUpdateError`, `FileError`, or `CancellationError`.
class UpdateFetcher {
public:
    /// `configuration` has no problem; both references outlive this.
    UpdateFetcher(HTTPSession& session, Executor& files, SoftwareUpdateConfiguration configuration,
                  std::string userAgent)
        : session_(session),
          files_(files),
          configuration_(std::move(configuration)),
          userAgent_(std::move(userAgent)) {}

    /// The versions that are listed.
    Task<std::vector<AppcastItem>> items();
    /// The item's file in the folder, which is there; gone with the last one who holds it. Nothing about it
    /// is verified but its length.
    Task<std::shared_ptr<const DownloadFile>> download(AppcastItem item, std::filesystem::path folder);

private:
    struct Answer {
        HTTPResponse response;
        Url url;  ///< that it came from in the end
    };
    Task<Answer> open(Url url, std::string accepted, Duration resourceTimeout);
    Task<std::string> readFeed(HTTPResponse response);
    Task<std::shared_ptr<const DownloadFile>> save(HTTPResponse response, AppcastItem item,
                                                   std::filesystem::path folder);

    HTTPSession& session_;
    Executor& files_;
    const SoftwareUpdateConfiguration configuration_;
    const std::string userAgent_;
};

}  // namespace quillmar
