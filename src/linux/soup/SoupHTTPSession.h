#pragma once
#include <cstdint>
#include <functional>
#include <list>
#include <span>

#include "linux/glib/Ref.h"
#include "platform/HTTPSession.h"

using SoupSession = struct _SoupSession;
using SoupMessage = struct _SoupMessage;

namespace quillmar {

/// HTTP by libsoup, on GLib's default context.
class SoupHTTPSession final : public HTTPSession {
public:
    /// Whether a request of `HTTPReach::publicNetworks` may reach the machine with an address of 4 or 16
    /// bytes, in the network's order.
    using AddressPredicate = std::function<bool(std::span<const std::uint8_t>)>;
    SoupHTTPSession(MainLoop& loop, int maximumConnectionsPerHost, AddressPredicate isPublicAddress);
    SoupHTTPSession(const SoupHTTPSession&) = delete;
    SoupHTTPSession& operator=(const SoupHTTPSession&) = delete;
    /// Every `open` and every body has ended by now, as the tasks that wait for them have.
    ~SoupHTTPSession() override;

    Task<HTTPResponse> open(HTTPRequest request) override;
    void invalidateAndCancel() override;

private:
    class Transfer;
    class Body;
    using Transfers = std::list<Transfer*>;
    Ref<SoupMessage> message(const HTTPRequest& request) const;

    MainLoop& loop_;
    const AddressPredicate isPublicAddress_;
    Ref<SoupSession> session_;
    Transfers transfers_;
    bool isInvalidated_ = false;
};

}  // namespace quillmar
