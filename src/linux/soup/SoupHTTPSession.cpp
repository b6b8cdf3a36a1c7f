#include "linux/soup/SoupHTTPSession.h"

#include <libsoup/soup.h>

#include <functional>
#include <stdexcept>
#include <stop_token>

#include "base/Text.h"
#include "linux/glib/Gio.h"

namespace quillmar {
namespace {

constexpr std::size_t chunkBytes = 65536;

std::map<std::string, std::string> headersOf(SoupMessage* message) {
    std::map<std::string, std::string> headers;
    soup_message_headers_foreach(
        soup_message_get_response_headers(message),
        [](const char* name, const char* value, gpointer data) {
            auto& map = *static_cast<std::map<std::string, std::string>*>(data);
            const auto [entry, isNew] = map.emplace(lowercased(name), value);
            if (!isNew) entry->second.append(", ").append(value);
        },
        &headers);
    return headers;
}

Task<Ref<GInputStream>> answerStream(Ref<SoupSession> session, Ref<SoupMessage> message) {
    const Ref<GAsyncResult> sent =
        co_await gio([session, message](GCancellable* cancellable, auto callback, gpointer data) {
            soup_session_send_async(session.get(), message.get(), G_PRIORITY_DEFAULT, cancellable, callback,
                                    data);
        });
    Owned<GError> error;
    auto stream =
        Ref<GInputStream>::adopt(soup_session_send_finish(session.get(), sent.get(), GErrorOut(error)));
    throwIfFailed(error);
    co_return stream;
}

/// The next piece of the answer, empty at its end.
Task<Owned<GBytes>> nextChunk(Ref<GInputStream> stream, std::size_t maximumBytes) {
    const Ref<GAsyncResult> read =
        co_await gio([stream, maximumBytes](GCancellable* cancellable, auto callback, gpointer data) {
            g_input_stream_read_bytes_async(stream.get(), maximumBytes, G_PRIORITY_DEFAULT, cancellable,
                                            callback, data);
        });
    Owned<GError> error;
    Owned<GBytes> bytes(g_input_stream_read_bytes_finish(stream.get(), read.get(), GErrorOut(error)));
    throwIfFailed(error);
    co_return bytes;
}

}  // namespace

/// One exchange under way: what may end it before its time.
class SoupHTTPSession::Transfer {
public:
    Transfer(MainLoop& loop, Transfers& all, const HTTPRequest& request, const std::stop_token& outer)
        : loop_(loop),
          all_(all),
          position_(all.insert(all.end(), this)),
          silenceLimit_(request.requestTimeout),
          onOuterStop_(outer, [this] { stop_.request_stop(); }) {
        if (request.resourceTimeout > Duration::zero()) {
            limit_ = Scheduled(loop, loop.now() + request.resourceTimeout, [this] { timeOut(); });
        }
        serverSpoke();
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() { all_.erase(position_); }

    std::stop_token stopToken() const { return stop_.get_token(); }
    void cancel() { stop_.request_stop(); }
    bool didTimeOut() const { return didTimeOut_; }
    /// Begins the time anew in which the server may be silent.
    void serverSpoke() {
        if (silenceLimit_ <= Duration::zero()) return;
        silence_ = Scheduled(loop_, loop_.now() + silenceLimit_, [this] { timeOut(); });
    }

private:
    void timeOut() {
        didTimeOut_ = true;
        stop_.request_stop();
    }

    MainLoop& loop_;
    Transfers& all_;
    Transfers::iterator position_;
    Duration silenceLimit_;
    bool didTimeOut_ = false;
    std::stop_source stop_;
    std::stop_callback<std::function<void()>> onOuterStop_;
    Scheduled silence_;
    Scheduled limit_;
};

SoupHTTPSession::SoupHTTPSession(MainLoop& loop, int maximumConnectionsPerHost)
    : loop_(loop),
      session_(Ref<SoupSession>::adopt(soup_session_new_with_options(
          "max-conns-per-host", maximumConnectionsPerHost, "timeout", 0u, nullptr))) {
    // A name and password within a URL are not kept for the next one.
    soup_session_remove_feature_by_type(session_.get(), SOUP_TYPE_AUTH_MANAGER);
}

SoupHTTPSession::~SoupHTTPSession() { soup_session_abort(session_.get()); }

void SoupHTTPSession::invalidateAndCancel() {
    isInvalidated_ = true;
    for (Transfer* transfer : Transfers(transfers_)) transfer->cancel();
}

Task<HTTPResponse> SoupHTTPSession::send(HTTPRequest request, std::size_t maximumBodyBytes) {
    const TaskContext context = co_await currentContext();
    if (isInvalidated_ || context.stop.stop_requested()) throw CancellationError();
    Ref<SoupMessage> toSend = message(request);
    Transfer transfer(loop_, transfers_, request, context.stop);
    Task<HTTPResponse> task = exchange(session_, std::move(toSend), &transfer, maximumBodyBytes);
    task.setContext({context.loop, transfer.stopToken()});
    try {
        co_return co_await std::move(task);
    } catch (const CancellationError&) {
        if (transfer.didTimeOut()) throw std::runtime_error("The request timed out.");
        throw;
    }
}

Ref<SoupMessage> SoupHTTPSession::message(const HTTPRequest& request) const {
    const std::string scheme = request.url.scheme();
    const bool isWebAddress = (scheme == "http" || scheme == "https") && !request.url.host().empty();
    auto message = Ref<SoupMessage>::adopt(
        isWebAddress ? soup_message_new(request.method.c_str(), request.url.string().c_str()) : nullptr);
    if (!message) throw std::runtime_error("not a web address");
    soup_message_add_flags(message.get(), SOUP_MESSAGE_NO_REDIRECT);
    if (!request.body.empty()) {
        const Owned<GBytes> body(g_bytes_new(request.body.data(), request.body.size()));
        soup_message_set_request_body_from_bytes(message.get(), nullptr, body.get());
    }
    SoupMessageHeaders* headers = soup_message_get_request_headers(message.get());
    for (const auto& [name, value] : request.headers) {
        soup_message_headers_replace(headers, name.c_str(), value.c_str());
    }
    return message;
}

Task<HTTPResponse> SoupHTTPSession::exchange(Ref<SoupSession> session, Ref<SoupMessage> message,
                                             Transfer* transfer, std::size_t maximumBodyBytes) {
    const Ref<GInputStream> stream = co_await answerStream(std::move(session), message);
    transfer->serverSpoke();
    HTTPResponse response;
    response.status = static_cast<int>(soup_message_get_status(message.get()));
    response.headers = headersOf(message.get());
    while (true) {
        // One byte more than allowed is asked for: only that tells a body that just fits from one that does
        // not.
        const std::size_t room = maximumBodyBytes - response.body.size();
        const Owned<GBytes> chunk = co_await nextChunk(stream, room < chunkBytes ? room + 1 : chunkBytes);
        gsize size = 0;
        const auto* data = static_cast<const std::uint8_t*>(g_bytes_get_data(chunk.get(), &size));
        if (size == 0) break;
        transfer->serverSpoke();
        response.isBodyCut = size > room;
        response.body.insert(response.body.end(), data, data + std::min<std::size_t>(size, room));
        if (response.isBodyCut) break;
    }
    co_return response;
}

}  // namespace quillmar
