#include "linux/soup/SoupHTTPSession.h"

#include <libsoup/soup.h>

#include <functional>
#include <stdexcept>
#include <stop_token>

#include "base/Text.h"
#include "linux/glib/Gio.h"

namespace quillmar {
namespace {

/// Of a server that is about to answer and never does. The library reads them all in one turn of the loop,
/// in which no time passes for anyone, so they are counted.
constexpr int maximumInformationalAnswers = 100;

using AddressPredicate = SoupHTTPSession::AddressPredicate;

bool isAllowed(const AddressPredicate& mayReach, GSocketAddress* address) {
    if (!G_IS_INET_SOCKET_ADDRESS(address)) return false;
    GInetAddress* inet = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(address));
    return mayReach({g_inet_address_to_bytes(inet), g_inet_address_get_native_size(inet)});
}

std::string textOf(GSocketAddress* address) {
    if (!G_IS_INET_SOCKET_ADDRESS(address)) return "A local socket";
    GInetAddress* inet = g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(address));
    return Owned<char>(g_inet_address_to_string(inet)).get();
}

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

/// The response but for its body.
HTTPResponse headOf(SoupMessage* message) {
    HTTPResponse response;
    response.status = static_cast<int>(soup_message_get_status(message));
    response.headers = headersOf(message);
    SoupMessageHeaders* headers = soup_message_get_response_headers(message);
    // What is unpacked on the way has another length than what was announced.
    if (soup_message_headers_get_encoding(headers) == SOUP_ENCODING_CONTENT_LENGTH &&
        !response.headers.contains("content-encoding")) {
        response.expectedContentLength = soup_message_headers_get_content_length(headers);
    }
    const char* type = soup_message_headers_get_content_type(headers, nullptr);
    if (type) response.mimeType = lowercased(type);
    return response;
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
            limit_ = Scheduled(loop, loop.now() + request.resourceTimeout, [this] { end(timedOut()); });
        }
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() {
        stopWatching();
        all_.erase(position_);
    }

    void cancel() { stop_.request_stop(); }

    /// Waits for the server's next word, no longer than it may be silent.
    template <class T>
    Task<T> waitFor(Task<T> word) {
        const TaskContext context = co_await currentContext();
        const std::stop_callback onStop(context.stop, [this] { stop_.request_stop(); });
        if (silenceLimit_ > Duration::zero()) {
            silence_ = Scheduled(loop_, loop_.now() + silenceLimit_, [this] { end(timedOut()); });
        }
        word.setContext({context.loop, stop_.get_token()});
        try {
            T result = co_await std::move(word);
            silence_.cancel();
            co_return result;
        } catch (const CancellationError&) {
            if (failure_) std::rethrow_exception(failure_);
            throw;
        }
    }

    /// Ends the transfer where the message's way does: at a machine that it may not reach, or a server that
    /// has no answer. An empty `mayReach` allows every machine.
    void watch(SoupMessage* message, AddressPredicate mayReach) {
        message_ = Ref<SoupMessage>::share(message);
        mayReach_ = std::move(mayReach);
        g_signal_connect(message, "got-informational", G_CALLBACK(&onInformationalAnswer), this);
        if (mayReach_) g_signal_connect(message, "network-event", G_CALLBACK(&onNetworkEvent), this);
    }
    /// The connection stands; whatever it reports from now on comes too late for us.
    void stopWatching() {
        if (message_) g_signal_handlers_disconnect_by_data(message_.get(), this);
        message_ = {};
    }

private:
    static void onNetworkEvent(SoupMessage*, GSocketClientEvent event, GIOStream* connection, gpointer data) {
        if (event != G_SOCKET_CLIENT_CONNECTING || !G_IS_SOCKET_CONNECTION(connection)) return;
        const auto address = Ref<GSocketAddress>::adopt(
            g_socket_connection_get_remote_address(G_SOCKET_CONNECTION(connection), nullptr));
        // A proxy stands where it stands; what the names lead to that it resolves is its own affair.
        if (!address || G_IS_PROXY_ADDRESS(address.get())) return;
        auto* self = static_cast<Transfer*>(data);
        if (isAllowed(self->mayReach_, address.get())) return;
        self->end(std::make_exception_ptr(ForbiddenAddressError(textOf(address.get()))));
    }
    static void onInformationalAnswer(SoupMessage*, gpointer data) {
        auto* self = static_cast<Transfer*>(data);
        if (++self->informationalAnswers_ < maximumInformationalAnswers) return;
        self->end(
            std::make_exception_ptr(std::runtime_error("The server announces answers without an end.")));
    }
    static std::exception_ptr timedOut() {
        return std::make_exception_ptr(std::runtime_error("The request timed out."));
    }
    void end(std::exception_ptr failure) {
        if (!failure_) failure_ = std::move(failure);
        stop_.request_stop();
    }

    MainLoop& loop_;
    Transfers& all_;
    Transfers::iterator position_;
    Duration silenceLimit_;
    std::exception_ptr failure_;  ///< why it ended, when nobody cancelled it
    int informationalAnswers_ = 0;
    AddressPredicate mayReach_;
    std::stop_source stop_;
    std::stop_callback<std::function<void()>> onOuterStop_;
    Scheduled silence_;
    Scheduled limit_;
    Ref<SoupMessage> message_;
};

class SoupHTTPSession::Body final : public HTTPBody {
public:
    Body(std::unique_ptr<Transfer> transfer, Ref<GInputStream> stream, std::optional<std::int64_t> length)
        : transfer_(std::move(transfer)), stream_(std::move(stream)), missing_(length.value_or(0)) {}

    Task<Bytes> read(std::size_t maximumBytes) override {
        const Owned<GBytes> chunk = co_await transfer_->waitFor(nextChunk(stream_, maximumBytes));
        gsize size = 0;
        const auto* data = static_cast<const std::uint8_t*>(g_bytes_get_data(chunk.get(), &size));
        // Where the server said that it would hang up, the library takes every end for the right one.
        if (size == 0 && missing_ > 0) throw std::runtime_error("Connection terminated unexpectedly");
        missing_ -= static_cast<std::int64_t>(size);
        co_return Bytes(data, data + size);
    }

private:
    std::unique_ptr<Transfer> transfer_;
    Ref<GInputStream> stream_;
    std::int64_t missing_;  ///< bytes that were announced and have not come
};

SoupHTTPSession::SoupHTTPSession(MainLoop& loop, int maximumConnectionsPerHost,
                                 AddressPredicate isPublicAddress)
    : loop_(loop),
      isPublicAddress_(std::move(isPublicAddress)),
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

Task<HTTPResponse> SoupHTTPSession::open(HTTPRequest request) {
    const TaskContext context = co_await currentContext();
    if (isInvalidated_ || context.stop.stop_requested()) throw CancellationError();
    const Ref<SoupMessage> toSend = message(request);
    auto transfer = std::make_unique<Transfer>(loop_, transfers_, request, context.stop);
    const bool isRestricted = request.reach == HTTPReach::publicNetworks;
    transfer->watch(toSend.get(), isRestricted ? isPublicAddress_ : AddressPredicate());
    Ref<GInputStream> stream = co_await transfer->waitFor(answerStream(session_, toSend));
    transfer->stopWatching();
    HTTPResponse response = headOf(toSend.get());
    response.body =
        std::make_unique<Body>(std::move(transfer), std::move(stream), response.expectedContentLength);
    co_return response;
}

Ref<SoupMessage> SoupHTTPSession::message(const HTTPRequest& request) const {
    const std::string scheme = request.url.scheme();
    const bool isWebAddress = (scheme == "http" || scheme == "https") && !request.url.host().empty();
    auto message = Ref<SoupMessage>::adopt(
        isWebAddress ? soup_message_new(request.method.c_str(), request.url.string().c_str()) : nullptr);
    if (!message) throw std::runtime_error("not a web address");
    soup_message_add_flags(message.get(), SOUP_MESSAGE_NO_REDIRECT);
    // A connection that is there already says no more where it leads.
    if (request.reach == HTTPReach::publicNetworks) {
        soup_message_add_flags(message.get(), SOUP_MESSAGE_NEW_CONNECTION);
    }
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

}  // namespace quillmar
