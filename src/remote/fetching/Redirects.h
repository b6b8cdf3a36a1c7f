#pragma once
#include "platform/HTTPSession.h"
#include "remote/fetching/RemoteServices.h"

namespace quillmar {

/// Opens a request to a service and follows where it is sent on to, ten times at most and to web addresses
/// only. The way never leads from a public service into this machine or its network, and what the request
/// says of the user stays with the host that it was meant for. Throws as `HTTPSession::open`.
Task<HTTPResponse> openFollowingRedirects(HTTPSession& session, HTTPRequest request, RemoteService service);

/// Where the answer sends on to, as the server wrote it; null for one that is final.
const std::string* redirection(const HTTPResponse& response);

/// Whether scheme, host and port are the same.
bool isSameHost(const Url& left, const Url& right);

}  // namespace quillmar
