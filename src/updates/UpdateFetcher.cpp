#include "updates/UpdateFetcher.h"

#include <system_error>

#include "base/FileError.h"
#include "base/PublicAddress.h"
#include "base/UrlEditing.h"
#include "remote/fetching/Redirects.h"
#include "updates/SoftwareUpdateError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Error = SoftwareUpdateError;

constexpr int maximumHops = 5;
constexpr std::chrono::seconds longestSilence{30};
constexpr std::chrono::minutes feedTimeout{2};
constexpr std::chrono::minutes fileTimeout{60};
constexpr std::size_t pieceBytes = 65536;
constexpr std::size_t maximumFeedBytes = 1048576;
constexpr std::int64_t maximumFileBytes = 268435456;

bool isRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

/// Every stop on the way is as secure as its beginning, and none but the configured one is in this network.
Task<UpdateFetcher::Answer> UpdateFetcher::open(Url url, std::string accepted, Duration resourceTimeout) {
    const MainLoop& loop = *(co_await currentContext()).loop;
    const TimePoint end = loop.now() + resourceTimeout;
    for (int hop = 0; hop <= maximumHops; ++hop) {
        const bool isConfigured = isSameHost(url, *configuration_.feedURL);
        if (!configuration_.mayComeFrom(url) || (!isConfigured && !mayBePublicHost(url.host())))
            throw Error(Error::Case::insecureAddress, url.string());
        HTTPRequest request{.url = url,
                            .headers = {{"User-Agent", userAgent_}, {"Accept", accepted}},
                            .requestTimeout = longestSilence,
                            .resourceTimeout = std::max<Duration>(end - loop.now(), Duration(1)),
                            .reach = isConfigured ? HTTPReach::anywhere : HTTPReach::publicNetworks};
        HTTPResponse response;
        try {
            response = co_await session_.open(std::move(request));
        } catch (const ForbiddenAddressError& error) {
            throw Error(Error::Case::insecureAddress, error.address());
        }
        const auto location = response.headers.find("location");
        if (!isRedirect(response.status) || location == response.headers.end())
            co_return Answer{std::move(response), url};
        const auto next = resolvedReference(url, location->second);
        if (!next) throw Error(Error::Case::insecureAddress, location->second);
        url = *next;
    }
    throw Error(Error::Case::endlessRedirects);
}

Task<std::vector<AppcastItem>> UpdateFetcher::items() {
    try {
        auto [response, url] =
            co_await open(*configuration_.feedURL, "application/rss+xml, text/xml, */*;q=0.1", feedTimeout);
        if (response.status != 200) throw Error(Error::Case::feedStatus, std::to_string(response.status));
        co_return parseAppcast(co_await readFeed(std::move(response)), url);
    } catch (const AppLocalizableError&) {
        throw;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        throw Error(Error::Case::feedUnreachable, error.what());
    }
}

Task<std::string> UpdateFetcher::readFeed(HTTPResponse response) {
    std::string text;
    while (true) {
        const Bytes piece = co_await response.body->read(pieceBytes);
        if (piece.empty()) co_return text;
        text.append(piece.begin(), piece.end());
        if (text.size() > maximumFeedBytes) throw Error(Error::Case::feedTooLarge);
    }
}

Task<std::shared_ptr<const DownloadFile>> UpdateFetcher::download(AppcastItem item, fs::path folder) {
    try {
        auto [response, url] = co_await open(item.file, "*/*", fileTimeout);
        if (response.status != 200) {
            throw Error(Error::Case::fileUnreachable, item.versionText,
                        "HTTP " + std::to_string(response.status));
        }
        co_return co_await save(std::move(response), item, folder);
    } catch (const AppLocalizableError&) {
        throw;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::system_error& error) {
        throw FileError(folder, error);
    } catch (const std::exception& error) {
        throw Error(Error::Case::fileUnreachable, item.versionText, error.what());
    }
}

Task<std::shared_ptr<const DownloadFile>> UpdateFetcher::save(HTTPResponse response, AppcastItem item,
                                                              fs::path folder) {
    const Error wrongLength(Error::Case::wrongLength, item.versionText);
    const Error tooLarge(Error::Case::fileTooLarge, item.versionText);
    const auto& announced = response.expectedContentLength;
    if (item.length > maximumFileBytes || announced > maximumFileBytes) throw tooLarge;
    if (item.length && announced && item.length != announced) throw wrongLength;
    const std::shared_ptr<const DownloadFile> file = co_await files_.run(
        [folder]() -> std::shared_ptr<const DownloadFile> { return std::make_shared<DownloadFile>(folder); });
    std::int64_t count = 0;
    while (true) {
        Bytes piece = co_await response.body->read(pieceBytes);
        if (piece.empty()) break;
        count += std::ssize(piece);
        if (item.length && count > *item.length) throw wrongLength;
        if (count > maximumFileBytes) throw tooLarge;
        co_await files_.run([file, bytes = std::move(piece)] { file->append(bytes); });
    }
    if (item.length && count != *item.length) throw wrongLength;
    co_return file;
}

}  // namespace quillmar
