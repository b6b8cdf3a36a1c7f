#include "remote/fetching/RemoteImageFetcher.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <span>
#include <system_error>

#include "base/Files.h"
#include "base/Hash.h"
#include "base/UrlEditing.h"
#include "platform/PictureRenderingError.h"
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

/// Whether a file that begins like this is markup, plain or packed. A drawing of that kind is a program for
/// whoever reads it; no service that is asked has a reason to send one.
bool isMarkup(std::span<const std::uint8_t> start) {
    const auto begins = [&](std::initializer_list<std::uint8_t> bytes) {
        return start.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), start.begin());
    };
    if (begins({0x1f, 0x8b})) return true;
    if (begins({0xef, 0xbb, 0xbf})) start = start.subspan(3);
    const bool isWide = begins({0xff, 0xfe}) || begins({0xfe, 0xff}) || begins({0, '<'});
    if (isWide) start = start.subspan(begins({0, '<'}) ? 1 : 2);
    const auto first = std::ranges::find_if_not(start, [&](std::uint8_t byte) {
        return byte == ' ' || (byte >= '\t' && byte <= '\r') || (isWide && byte == 0);
    });
    return first == start.end() || *first == '<';
}

bool isMarkup(const fs::path& file) {
    Bytes start(4096);
    std::ifstream content(file, std::ios::binary);
    content.read(reinterpret_cast<char*>(start.data()), std::ssize(start));
    start.resize(static_cast<std::size_t>(content.gcount()));
    return isMarkup(start);
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
    co_await files_.run([setup = setup_] {
        removeDownloads(setup.temporary, downloadPrefix);
        removeDownloads(setup.cache, stagingPrefix);
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

/// Who asks, and for what. A service that wants to see a browser sees one before the program's own name.
RemoteImageFetcher::Headers RemoteImageFetcher::headersOf(Headers own, std::string accepted) const {
    std::string& agent = own["User-Agent"];
    agent += (agent.empty() ? "" : " ") + setup_.userAgent;
    own.emplace("Accept", std::move(accepted));
    return own;
}

Task<std::string> RemoteImageFetcher::fetchMetadata(RemoteService service, Url url, Headers headers) {
    try {
        co_return co_await fetchMetadataUnsorted(service, std::move(url), std::move(headers));
    } catch (const Error&) {
        throw;
    } catch (const CancellationError&) {
        throw;
    } catch (const ForbiddenAddressError& error) {
        throw Error(Error::Case::forbiddenAddress, service.name, error.address());
    } catch (const std::runtime_error& error) {
        throw Error(Error::Case::unreachable, service.name, error.what());
    }
}

Task<std::string> RemoteImageFetcher::fetchMetadataUnsorted(RemoteService service, Url url, Headers headers) {
    // Where the configuration leads is its own affair; an address out of an answer is not.
    const bool isConfigured = isSameHost(url, service.host) || service.isLocal();
    const HTTPResponse response = co_await openFollowingRedirects(
        session_,
        {.url = std::move(url),
         .headers = headersOf(std::move(headers), "application/json"),
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

/// Whether the picture is there and whole; what is there and is none makes room.
Task<bool> RemoteImageFetcher::isInCache(fs::path file) {
    const auto [isThere, mayBePicture] = co_await files_.run([file] {
        createDirectories(file.parent_path());
        const bool isFile = isReadable(file);
        return std::pair(isFile, isFile && !isMarkup(file));
    });
    if (!isThere) co_return false;
    const bool isPicture = mayBePicture && co_await decodes(file);
    co_await files_.run([file, isPicture, now = clock_.now()] {
        std::error_code ignored;  // the new picture takes its place in any case
        isPicture ? stampLastUsed(file, now) : void(fs::remove(file, ignored));
    });
    co_return isPicture;
}

/// What is too large or too slow to be looked at is as good as broken.
Task<bool> RemoteImageFetcher::decodes(fs::path file) {
    try {
        co_return co_await pictures_.isPicture(std::move(file));
    } catch (const PictureRenderingError&) {
        co_return false;
    }
}

Task<fs::path> RemoteImageFetcher::downloadImage(RemoteService service, Url url, std::int64_t limit) {
    const Error failed(Error::Case::imageDownloadFailed, service.name);
    const fs::path destination = setup_.cache / remoteImageFileName(url);
    if (co_await isInCache(destination)) co_return destination;
    co_await throwIfCancelled();
    const Download download = co_await streamImage(service, std::move(url), limit);
    if (!co_await decodes(download->path())) throw failed;
    const bool isInPlace = co_await files_.run([download, destination, now = clock_.now()] {
        if (!moveIntoPlace(download->path(), destination)) return false;
        stampLastUsed(destination, now);
        return true;
    });
    co_await throwIfCancelled();
    if (!isInPlace) throw failed;
    co_return destination;
}

Task<RemoteImageFetcher::Download> RemoteImageFetcher::streamImage(RemoteService service, Url url,
                                                                   std::int64_t limit) {
    try {
        co_return co_await streamImageUnsorted(service, std::move(url), limit);
    } catch (const Error& error) {
        if (error.errorCase() == Error::Case::imageTooLarge) throw;
        throw Error(Error::Case::imageDownloadFailed, service.name);
    } catch (const CancellationError&) {
        throw;
    } catch (const ForbiddenAddressError& error) {
        throw Error(Error::Case::forbiddenAddress, service.name, error.address());
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
         .headers = headersOf({}, "image/jpeg, image/png, image/*;q=0.8"),
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
        [folder = setup_.temporary]() -> Download { return std::make_shared<const DownloadFile>(folder); });
    std::int64_t count = 0;
    bool isStart = true;
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
        if (std::exchange(isStart, false) && isMarkup(buffer)) throw failed;
        co_await files_.run([file, bytes = std::exchange(buffer, {})] { file->append(bytes); });
        if (isEnd) break;
    }
    co_await throwIfCancelled();
    co_return file;
}

}  // namespace quillmar
