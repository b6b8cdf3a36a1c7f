#include "remote/fetching/RemoteImageFetcher.h"

#include <unistd.h>

#include <algorithm>
#include <system_error>

#include "base/Files.h"
#include "base/Hash.h"
#include "base/UrlEditing.h"
#include "remote/fetching/Redirects.h"
#include "remote/fetching/RemoteImageProviderError.h"
#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Error = RemoteImageProviderError;

constexpr std::chrono::seconds metadataTimeout{60};
constexpr std::chrono::seconds imageTimeout{30};
constexpr std::chrono::seconds resourceTimeout{120};
constexpr std::size_t bufferBytes = 65536;
constexpr std::int64_t megabyte = 1048576;
/// Longer ones are no kinds of pictures, and a file's name has an end.
constexpr std::size_t longestExtension = 16;

bool isSuccess(int status) { return status >= 200 && status <= 299; }
bool isReadable(const fs::path& file) { return ::access(file.c_str(), R_OK) == 0; }

/// Whether the picture is there and whole; what is there and is none makes room.
bool isInCache(const fs::path& file, const PictureRendering& pictures) {
    if (!isReadable(file)) return false;
    if (pictures.isPicture(file)) return true;
    std::error_code ignored;  // the new picture takes its place in any case
    fs::remove(file, ignored);
    return false;
}

/// Hidden, so that no sweep takes half a picture for one.
constexpr std::string_view stagingPrefix = ".";

/// Gives the download its name in one step. False when it cannot, and nobody else has done it meanwhile.
bool moveIntoPlace(const fs::path& download, const fs::path& destination) {
    if (isReadable(destination)) return true;
    const fs::path staging = destination.parent_path() / downloadFileName(stagingPrefix);
    std::error_code failure;
    if (fs::copy_file(download, staging, failure)) fs::rename(staging, destination, failure);
    if (!failure) return true;
    std::error_code ignored;
    fs::remove(staging, ignored);
    return isReadable(destination);
}

void removeDownloads(const fs::path& folder, std::string_view prefix) {
    std::error_code ignored;  // what stays is tried again at the next start
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        std::error_code failure;
        if (isDownloadFileName(entry->path().filename().string(), prefix)) fs::remove(entry->path(), failure);
    }
}

}  // namespace

Task<void> RemoteImageFetcher::removeLeftovers() {
    co_await files_.run([folders = folders_] {
        removeDownloads(folders.temporary, downloadPrefix);
        removeDownloads(folders.cache, stagingPrefix);
    });
}

std::string remoteImageFileName(const Url& url) {
    std::string extension = pathExtension(url);
    const bool isPlain = !extension.empty() && extension.size() <= longestExtension &&
                         std::ranges::all_of(extension, [](char c) {
                             return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z');
                         });
    if (!isPlain) extension = "jpg";
    return "remote-" + hexadecimal(fnv1a64(url.string())) + "." + extension;
}

Task<std::string> RemoteImageFetcher::fetchMetadata(RemoteService service, Url url,
                                                    std::map<std::string, std::string> headers) {
    // Where the configuration leads is its own affair; an address out of an answer is not.
    const bool isConfigured = isSameHost(url, service.host) || service.isLocal();
    const HTTPResponse response = co_await openFollowingRedirects(
        session_,
        {.url = std::move(url),
         .headers = std::move(headers),
         .requestTimeout = metadataTimeout,
         .resourceTimeout = resourceTimeout,
         .reach = isConfigured ? HTTPReach::anywhere : HTTPReach::publicNetworks},
        service);
    if (!isSuccess(response.status)) throw Error(Error::Case::httpStatus, service.name, response.status);
    const std::int64_t announced = response.expectedContentLength.value_or(0);
    if (announced > maximumMetadataBytes) throw Error(Error::Case::metadataTooLarge, service.name);
    std::string text;
    text.reserve(static_cast<std::size_t>(std::max<std::int64_t>(announced, 0)));
    while (true) {
        const Bytes piece = co_await response.body->read(bufferBytes);
        if (piece.empty()) break;
        text.append(piece.begin(), piece.end());
        if (std::ssize(text) >= maximumMetadataBytes) {
            throw Error(Error::Case::metadataTooLarge, service.name);
        }
    }
    co_await throwIfCancelled();
    co_return text;
}

Task<fs::path> RemoteImageFetcher::downloadImage(RemoteService service, Url url, std::int64_t limit) {
    const fs::path destination = folders_.cache / remoteImageFileName(url);
    const bool wasThere = co_await files_.run([destination, pictures = &pictures_, now = clock_.now()] {
        createDirectories(destination.parent_path());
        if (!isInCache(destination, *pictures)) return false;
        stampLastUsed(destination, now);
        return true;
    });
    if (wasThere) co_return destination;
    co_await throwIfCancelled();
    const Download download = co_await streamImage(service, std::move(url), limit);
    const bool isInPlace =
        co_await files_.run([download, destination, pictures = &pictures_, now = clock_.now()] {
            if (!pictures->isPicture(download->path())) return false;
            if (!moveIntoPlace(download->path(), destination)) return false;
            stampLastUsed(destination, now);
            return true;
        });
    co_await throwIfCancelled();
    if (!isInPlace) throw Error(Error::Case::imageDownloadFailed, service.name);
    co_return destination;
}

Task<RemoteImageFetcher::Download> RemoteImageFetcher::streamImage(RemoteService service, Url url,
                                                                   std::int64_t limit) {
    try {
        co_return co_await streamImageUnsorted(service, std::move(url), limit);
    } catch (const Error&) {
        throw;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // Whatever the network or the disk said: the user reads that the picture did not come.
        throw Error(Error::Case::imageDownloadFailed, service.name);
    }
}

Task<RemoteImageFetcher::Download> RemoteImageFetcher::streamImageUnsorted(RemoteService service, Url url,
                                                                           std::int64_t limit) {
    const HTTPResponse response = co_await openFollowingRedirects(
        session_,
        {.url = std::move(url),
         .requestTimeout = imageTimeout,
         .resourceTimeout = resourceTimeout,
         .reach = service.isLocal() ? HTTPReach::anywhere : HTTPReach::publicNetworks},
        service);
    const Error failed(Error::Case::imageDownloadFailed, service.name);
    const Error tooLarge(Error::Case::imageTooLarge, service.name, limit / megabyte);
    if (!isSuccess(response.status)) throw failed;
    if (response.expectedContentLength > limit) throw tooLarge;
    if (response.mimeType && !response.mimeType->starts_with("image/")) throw failed;

    const Download file = co_await files_.run(
        [folder = folders_.temporary]() -> Download { return std::make_shared<const DownloadFile>(folder); });
    std::int64_t count = 0;
    Bytes buffer;
    while (true) {
        Bytes piece = co_await response.body->read(bufferBytes - buffer.size());
        const bool isEnd = piece.empty();
        count += std::ssize(piece);
        if (count > limit) throw tooLarge;
        if (buffer.empty()) {
            buffer = std::move(piece);
        } else {
            buffer.insert(buffer.end(), piece.begin(), piece.end());
        }
        if (!isEnd && buffer.size() < bufferBytes) continue;
        co_await files_.run([file, bytes = std::exchange(buffer, {})] { file->append(bytes); });
        if (isEnd) break;
    }
    co_await throwIfCancelled();
    co_return file;
}

}  // namespace quillmar
