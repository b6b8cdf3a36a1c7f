#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "async/Task.h"
#include "base/Bytes.h"
#include "base/Url.h"

namespace quillmar {

/// Which machines a request may reach, whatever name led to them.
enum class HTTPReach {
    anywhere,
    publicNetworks  ///< not this machine, nor one of a private, link-local or otherwise reserved network
};

/// A request was not sent, for the machine that its name leads to is not one that it may reach.
class ForbiddenAddressError final : public std::runtime_error {
public:
    /// `address` as it is written in numbers, or the host's name where that tells already.
    explicit ForbiddenAddressError(std::string address)
        : std::runtime_error(address + " is no address of the Internet."), address_(std::move(address)) {}
    const std::string& address() const { return address_; }

private:
    std::string address_;
};

struct HTTPRequest {
    std::string method = "GET";
    Url url;
    std::map<std::string, std::string> headers;
    Bytes body;
    Duration requestTimeout{};   ///< longest silence of the server; zero: as long as it likes
    Duration resourceTimeout{};  ///< longest time for the whole exchange; zero: as long as it takes
    HTTPReach reach = HTTPReach::anywhere;
};

/// The rest of an answer, as it arrives. Its end, read or not, is the end of the transfer. Main thread.
class HTTPBody {
public:
    virtual ~HTTPBody() = default;
    /// The next bytes, at least one and at most `maximumBytes`; none at the end of the body. Throws
    /// `std::runtime_error` when it broke off or fell silent, `CancellationError` when the task or the
    /// session was cancelled. One read at a time; a read ends before the body does.
    virtual Task<Bytes> read(std::size_t maximumBytes) = 0;
};

/// An answer whose head has come.
struct HTTPResponse {
    int status = 0;
    std::map<std::string, std::string> headers;         ///< names in lower case
    std::optional<std::int64_t> expectedContentLength;  ///< of the body as announced, where it was
    std::optional<std::string> mimeType;                ///< in lower case, without parameters
    std::unique_ptr<HTTPBody> body;                     ///< never null
};

/// A client of web servers with no memory: no cookies, no cache, no credentials. Main thread.
class HTTPSession {
public:
    virtual ~HTTPSession() = default;
    /// Sends the request and waits for the head of the answer; redirects are answers like any other. Throws
    /// `std::runtime_error` when no answer came, `ForbiddenAddressError` when the request may not reach that
    /// machine, `CancellationError` when the task or the session was cancelled; both end the transfer itself.
    /// The body ends before the session does.
    virtual Task<HTTPResponse> open(HTTPRequest request) = 0;
    /// Cancels what runs; every later `open` is cancelled at once.
    virtual void invalidateAndCancel() = 0;
};

}  // namespace quillmar
