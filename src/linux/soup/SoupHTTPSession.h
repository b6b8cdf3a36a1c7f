#pragma once
#include <list>

#include "linux/glib/Ref.h"
#include "platform/HTTPSession.h"

using SoupSession = struct _SoupSession;
using SoupMessage = struct _SoupMessage;

namespace quillmar {

/// HTTP by libsoup, on GLib's default context.
class SoupHTTPSession final : public HTTPSession {
public:
    SoupHTTPSession(MainLoop& loop, int maximumConnectionsPerHost);
    SoupHTTPSession(const SoupHTTPSession&) = delete;
    SoupHTTPSession& operator=(const SoupHTTPSession&) = delete;
    /// Every `send` has ended by now, as the tasks that wait for them have.
    ~SoupHTTPSession() override;

    Task<HTTPResponse> send(HTTPRequest request, std::size_t maximumBodyBytes) override;
    void invalidateAndCancel() override;

private:
    class Transfer;
    using Transfers = std::list<Transfer*>;
    Ref<SoupMessage> message(const HTTPRequest& request) const;
    static Task<HTTPResponse> exchange(Ref<SoupSession> session, Ref<SoupMessage> message, Transfer* transfer,
                                       std::size_t maximumBodyBytes);

    MainLoop& loop_;
    Ref<SoupSession> session_;
    Transfers transfers_;
    bool isInvalidated_ = false;
};

}  // namespace quillmar
