#include "remote/fetching/Redirects.h"

#include "base/PublicAddress.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {
namespace {

using Error = RemoteImageProviderError;

constexpr int maximumHops = 10;

bool isRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// What says who asks and what is understood is for every server; the rest is for the one it was meant for.
bool isForEveryServer(const std::string& header) { return header == "User-Agent" || header == "Accept"; }

/// A proxy would be asked for it, and may stand on this very machine: no connection is tried.
void throwIfForbidden(const HTTPRequest& request) {
    const std::string host = request.url.host();
    if (request.reach != HTTPReach::publicNetworks || host.empty() || mayBePublicHost(host)) return;
    throw ForbiddenAddressError(host);
}

}  // namespace

const std::string* redirection(const HTTPResponse& response) {
    const auto location = response.headers.find("location");
    return isRedirect(response.status) && location != response.headers.end() ? &location->second : nullptr;
}

bool isSameHost(const Url& left, const Url& right) {
    return left.scheme() == right.scheme() && lowercased(left.host()) == lowercased(right.host()) &&
           left.port() == right.port();
}

Task<HTTPResponse> openFollowingRedirects(HTTPSession& session, HTTPRequest request, RemoteService service) {
    const MainLoop& loop = *(co_await currentContext()).loop;
    const TimePoint end = loop.now() + request.resourceTimeout;
    for (int hop = 0;; ++hop) {
        throwIfForbidden(request);
        HTTPResponse response = co_await session.open(request);
        const std::string* location = redirection(response);
        if (!location) co_return response;
        if (hop == maximumHops) throw Error(Error::Case::endlessRedirects, service.name);
        const auto next = resolvedReference(request.url, *location);
        if (!next) throw Error(Error::Case::redirectToNowhere, service.name);
        if (!isSameHost(request.url, *next)) {
            std::erase_if(request.headers,
                          [](const auto& header) { return !isForEveryServer(header.first); });
        }
        if (!service.isLocal()) request.reach = HTTPReach::publicNetworks;
        request.url = *next;
        request.resourceTimeout = end - loop.now();
        if (request.resourceTimeout <= Duration::zero()) throw Error(Error::Case::timedOut, service.name);
    }
}

}  // namespace quillmar
