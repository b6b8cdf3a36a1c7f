#pragma once
#include <map>
#include <optional>
#include <string>

#include "async/Task.h"
#include "base/Bytes.h"
#include "base/Url.h"

namespace quillmar {

struct HTTPRequest {
    std::string method = "GET";
    Url url;
    std::map<std::string, std::string> headers;
    Bytes body;
    Duration requestTimeout{};   ///< longest silence of the server
    Duration resourceTimeout{};  ///< longest time for the whole exchange
};

struct HTTPResponse {
    int status = 0;
    std::map<std::string, std::string> headers;  ///< names in lower case
    Bytes body;
    bool isBodyCut = false;  ///< the answer had more bytes than were asked for
};

/// A client of web servers with no memory: no cookies, no cache, no credentials. Main thread.
class HTTPSession {
public:
    virtual ~HTTPSession() = default;
    /// Sends the request and reads at most `maximumBodyBytes` of the answer; redirects are answers like any
    /// other. Throws `std::runtime_error` when no whole answer came, `CancellationError` when the task or the
    /// session was cancelled; both end the transfer itself.
    virtual Task<HTTPResponse> send(HTTPRequest request, std::size_t maximumBodyBytes) = 0;
    /// Cancels what runs; every later `send` is cancelled at once.
    virtual void invalidateAndCancel() = 0;
};

}  // namespace quillmar
