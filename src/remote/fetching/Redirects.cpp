#include "remote/fetching/Redirects.h"

#include <stdexcept>

#include "base/Text.h"
#include "base/UrlEditing.h"

namespace quillmar {
namespace {

constexpr int maximumHops = 10;

bool isRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

bool isSameHost(const Url& left, const Url& right) {
    return left.scheme() == right.scheme() && lowercased(left.host()) == lowercased(right.host()) &&
           left.port() == right.port();
}

Task<HTTPResponse> openFollowingRedirects(HTTPSession& session, HTTPRequest request, RemoteService service) {
    const MainLoop& loop = *(co_await currentContext()).loop;
    const TimePoint end = loop.now() + request.resourceTimeout;
    for (int hop = 0;; ++hop) {
        HTTPResponse response = co_await session.open(request);
        const auto location = response.headers.find("location");
        if (!isRedirect(response.status) || location == response.headers.end()) co_return response;
        if (hop == maximumHops) throw std::runtime_error("The server redirects without an end.");
        const auto next = resolvedReference(request.url, location->second);
        if (!next) throw std::runtime_error("The server redirects to what is no address.");
        if (!isSameHost(request.url, *next)) request.headers.clear();
        if (!service.isLocal()) request.reach = HTTPReach::publicNetworks;
        request.url = *next;
        request.resourceTimeout = end - loop.now();
        if (request.resourceTimeout <= Duration::zero()) throw std::runtime_error("The request timed out.");
    }
}

}  // namespace quillmar
