#include "linux/soup/SoupHTTPSession.h"

#include <gmock/gmock.h>
#include <libsoup/soup.h>

#include <algorithm>
#include <map>

#include "async/TaskScope.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::SizeIs;

/// A web server on the loopback interface. "/status/404" answers with that status and "answer", "/bytes/9"
/// with nine bytes; other paths take the connection over: "/silent" says nothing, "/trickle" a part and then
/// what `says` says, "/endless" a lot and never that it is done, the others something and hang up.
class Server {
public:
    Server() : server_(Ref<SoupServer>::adopt(soup_server_new("server-header", "test", nullptr))) {
        soup_server_listen_local(server_.get(), 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
        soup_server_add_handler(
            server_.get(), nullptr,
            [](SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer data) {
                static_cast<Server*>(data)->handle(message, path);
            },
            this, nullptr);
        GSList* uris = soup_server_get_uris(server_.get());
        address_ = Owned<char>(g_uri_to_string(static_cast<GUri*>(uris->data))).get();
        g_slist_free_full(uris, [](gpointer uri) { g_uri_unref(static_cast<GUri*>(uri)); });
    }
    Url url(const std::string& path) const { return *Url::parse(address_ + path.substr(1)); }
    /// Whether the client has hung up on the connection that was taken over.
    bool isLeft() const {
        if (!taken_) return false;
        char byte = 0;
        auto* input = G_POLLABLE_INPUT_STREAM(g_io_stream_get_input_stream(taken_.get()));
        GError* error = nullptr;
        const auto count = g_pollable_input_stream_read_nonblocking(input, &byte, 1, nullptr, &error);
        const bool wouldBlock = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK);
        g_clear_error(&error);
        return count == 0 || (count < 0 && !wouldBlock);
    }

    /// Goes on with the answer on the connection that was taken over.
    void says(const std::string& words) {
        g_output_stream_write_all(g_io_stream_get_output_stream(taken_.get()), words.data(), words.size(),
                                  nullptr, nullptr, nullptr);
    }

    std::vector<std::string> requests;

private:
    void handle(SoupServerMessage* message, std::string path) {
        SoupMessageHeaders* headers = soup_server_message_get_request_headers(message);
        const auto header = [&](const char* name) {
            const char* value = soup_message_headers_get_one(headers, name);
            return std::string(value ? value : "none");
        };
        requests.push_back(std::string(soup_server_message_get_method(message)) + " " + path + " " +
                           header("X-Own") + " " + header("Cookie") + " " +
                           soup_server_message_get_request_body(message)->data);
        const std::string number = path.substr(path.rfind('/') + 1);
        if (path.starts_with("/status/")) {
            auto* answer = soup_server_message_get_response_headers(message);
            soup_message_headers_append(answer, "Location", "/status/200");
            soup_message_headers_append(answer, "Set-Cookie", "a=b; Max-Age=1000");
            soup_server_message_set_status(message, static_cast<guint>(std::stoi(number)), nullptr);
            soup_server_message_set_response(message, "text/plain", SOUP_MEMORY_COPY, "answer", 6);
        } else if (path.starts_with("/bytes/")) {
            const std::string bytes(static_cast<std::size_t>(std::stoi(number)), 'x');
            soup_server_message_set_status(message, 200, nullptr);
            soup_server_message_set_response(message, "text/plain", SOUP_MEMORY_COPY, bytes.data(),
                                             bytes.size());
        } else if (path.starts_with("/announces/")) {
            taken_ = Ref<GIOStream>::adopt(soup_server_message_steal_connection(message));
            for (int i = std::stoi(number); i > 0; --i) says("HTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\n");
            says("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 5\r\n\r\nhello");
        } else {
            taken_ = Ref<GIOStream>::adopt(soup_server_message_steal_connection(message));
            static const std::map<std::string, std::string> words = {
                {"/half", "Content-Length: 100\r\n\r\nhalf"},
                {"/last-half", "Connection: close\r\nContent-Length: 100\r\n\r\nhalf"},
                {"/trickle", "Content-Length: 100\r\n\r\nhalf"},
                {"/endless", "\r\n" + std::string(100000, 'x')},
                {"/until-the-end", "\r\nhello"},
                {"/chunked", "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n"},
                {"/broken-chunk", "Transfer-Encoding: chunked\r\n\r\n5\r\nhel"},
            };
            if (path != "/silent") says("HTTP/1.1 200 OK\r\n" + words.at(path));
            const bool stays = path == "/silent" || path == "/trickle" || path == "/endless";
            if (!stays) g_io_stream_close(taken_.get(), nullptr, nullptr);
        }
    }

    Ref<SoupServer> server_;
    std::string address_;
    Ref<GIOStream> taken_;
};

class SoupHTTPSessionTest : public testing::Test {
public:
    struct Answer {
        int status = 0;
        std::map<std::string, std::string> headers;
        std::string body;
        std::optional<std::int64_t> expectedContentLength;
        std::optional<std::string> mimeType;
    };
    /// Lets the sockets and the loop work until `condition` holds.
    bool settleUntil(const std::function<bool()>& condition) {
        return loop.settleUntil([&] {
            while (g_main_context_iteration(nullptr, FALSE)) {
            }
            return condition();
        });
    }
    void starts(const std::string& path, std::size_t maximumBytes = 1000) {
        outcome.clear();
        HTTPRequest request{
            .url = server.url(path), .requestTimeout = seconds(15), .resourceTimeout = seconds(30)};
        task = scope.start(outcomeOf(&session, std::move(request), maximumBytes, &outcome, &answer));
    }
    /// What came of a request: its status and the length of its body, or how it failed.
    std::string requested(const std::string& path, std::size_t maximumBytes = 1000) {
        starts(path, maximumBytes);
        settleUntil([&] { return !outcome.empty(); });
        return outcome;
    }
    /// The same of a request that may reach the Internet alone, with the words of its failure.
    std::string publicly(const std::string& url) {
        outcome.clear();
        scope.spawn(outcomeOf(&session, {.url = *Url::parse(url), .reach = HTTPReach::publicNetworks}, 10,
                              &outcome, &answer));
        EXPECT_TRUE(settleUntil([&] { return !outcome.empty(); }));
        return outcome;
    }
    static Task<void> outcomeOf(SoupHTTPSession* session, HTTPRequest request, std::size_t maximumBytes,
                                std::string* outcome, Answer* answer) {
        try {
            const HTTPResponse response = co_await session->open(std::move(request));
            *answer = {
                response.status, response.headers, {}, response.expectedContentLength, response.mimeType};
            while (answer->body.size() <= maximumBytes) {
                const Bytes piece = co_await response.body->read(4096);
                if (piece.empty()) break;
                answer->body.append(piece.begin(), piece.end());
            }
            *outcome = std::to_string(answer->status) + " " +
                       (answer->body.size() > maximumBytes ? "left" : std::to_string(answer->body.size()));
        } catch (const CancellationError&) {
            *outcome = "cancelled";
        } catch (const ForbiddenAddressError& error) {
            *outcome = error.what();
        } catch (const std::runtime_error&) {
            *outcome = "failed";
        }
    }
    void startsAndReaches(const std::string& path) {
        starts(path);
        ASSERT_TRUE(settleUntil([&] { return server.requests.size() == 1; }));
        ASSERT_FALSE(server.isLeft());
        ASSERT_EQ(outcome, "");
    }
    /// The connection is really gone, and the only one that is allowed is free for the next request.
    void expectTheConnectionIsFree() {
        EXPECT_TRUE(settleUntil([&] { return server.isLeft(); }));
        EXPECT_EQ(requested("/status/200"), "200 6");
    }

    Server server;
    VirtualLoop loop;
    std::vector<Bytes> asked;  ///< addresses
    SoupHTTPSession session{loop, 1, [this](std::span<const std::uint8_t> address) {
                                asked.emplace_back(address.begin(), address.end());
                                return false;
                            }};
    std::string outcome;
    Answer answer;
    TaskHandle<void> task;
    TaskScope scope{loop};
};

TEST_F(SoupHTTPSessionTest, everyStatusIsAnAnswerAndRedirectsAreNotFollowed) {
    for (const char* status : {"200", "404", "408", "429", "500", "302", "307", "401"}) {
        EXPECT_EQ(requested(std::string("/status/") + status), std::string(status) + " 6");
    }
    EXPECT_THAT(server.requests, SizeIs(8));
    EXPECT_EQ(answer.headers["location"], "/status/200");
    EXPECT_EQ(answer.body, "answer");
    EXPECT_EQ(answer.expectedContentLength, 6);
    EXPECT_EQ(answer.mimeType, "text/plain");
}

TEST_F(SoupHTTPSessionTest, aRequestArrivesAsItWasMadeAndNoCookieComesBack) {
    requested("/status/200");
    const std::string body = "{\"a\":1}";
    HTTPRequest request{.method = "POST",
                        .url = server.url("/status/200"),
                        .headers = {{"X-Own", "yes"}},
                        .body = Bytes(body.begin(), body.end())};
    outcome.clear();
    scope.spawn(outcomeOf(&session, std::move(request), 10, &outcome, &answer));
    settleUntil([&] { return !outcome.empty(); });
    EXPECT_THAT(server.requests,
                ElementsAre("GET /status/200 none none ", "POST /status/200 yes none {\"a\":1}"));
}

TEST_F(SoupHTTPSessionTest, aBodyIsReadToItsEndOrLeftAndTheConnectionIsFreeEitherWay) {
    EXPECT_EQ(requested("/bytes/0", 0), "200 0");
    EXPECT_EQ(requested("/bytes/1", 0), "200 left");
    EXPECT_EQ(requested("/bytes/3000000", 200000), "200 left");
    EXPECT_EQ(requested("/bytes/3000000", SIZE_MAX - 1), "200 3000000");
    EXPECT_EQ(requested("/endless", 90000), "200 left");
    expectTheConnectionIsFree();
}

TEST_F(SoupHTTPSessionTest, aLengthIsKnownWhereItIsAnnouncedAndMustBeTrue) {
    EXPECT_EQ(requested("/half"), "failed");
    EXPECT_EQ(answer.expectedContentLength, 100);
    EXPECT_EQ(requested("/last-half"), "failed");
    EXPECT_EQ(requested("/chunked"), "200 5");
    EXPECT_EQ(answer.expectedContentLength, std::nullopt);
    EXPECT_EQ(answer.mimeType, std::nullopt);
    EXPECT_EQ(requested("/broken-chunk"), "failed");
    EXPECT_EQ(requested("/until-the-end"), "200 5");
}

TEST_F(SoupHTTPSessionTest, eachWordOfTheServerBeginsItsSilenceAnewButTheWholeHasAnEnd) {
    startsAndReaches("/trickle");
    for (int second = 0; second < 28; second += 14) {
        loop.advance(seconds(14));
        server.says("x");
        settleUntil([&, length = answer.body.size()] { return answer.body.size() > length; });
        EXPECT_EQ(outcome, "");
    }
    loop.advance(seconds(1));
    EXPECT_EQ(outcome, "");
    loop.advance(seconds(1));
    EXPECT_TRUE(settleUntil([&] { return !outcome.empty(); }));
    EXPECT_EQ(outcome, "failed");
    expectTheConnectionIsFree();
}

TEST_F(SoupHTTPSessionTest, aRequestForTheInternetReachesNothingOfThisMachineWhateverItIsCalled) {
    requested("/status/200");  // a connection that is there already is no way in either
    for (const char* host : {"127.0.0.1", "localhost", "[::1]", "[::ffff:127.0.0.1]"}) {
        const std::string port = std::to_string(*server.url("/").port());
        EXPECT_THAT(publicly("http://" + std::string(host) + ":" + port + "/status/200"),
                    testing::EndsWith(" is no address of the Internet."))
            << host;
    }
    EXPECT_THAT(server.requests, SizeIs(1));
    EXPECT_THAT(asked, testing::Contains(Bytes({127, 0, 0, 1})));
    g_setenv("http_proxy", server.url("/").string().c_str(), TRUE);
    EXPECT_EQ(publicly("http://a.example/status/200"), "200 6") << "where a proxy stands is its own affair";
    g_unsetenv("http_proxy");
}

TEST_F(SoupHTTPSessionTest, aServerThatOnlyAnnouncesAnAnswerIsLeft) {
    EXPECT_EQ(requested("/announces/99"), "200 5");
    EXPECT_EQ(requested("/announces/100"), "failed");
    expectTheConnectionIsFree();
}

TEST_F(SoupHTTPSessionTest, whatIsNoWebAddressOrHasNobodyIsAFailure) {
    for (const char* url : {"http://127.0.0.1:1/", "file:///etc/hostname", "relative", "data:text/plain,x"}) {
        outcome.clear();
        scope.spawn(outcomeOf(&session, {.url = *Url::parse(url)}, 10, &outcome, &answer));
        EXPECT_TRUE(settleUntil([&] { return !outcome.empty(); }));
        EXPECT_EQ(outcome, "failed") << url;
    }
}

TEST_F(SoupHTTPSessionTest, aServerThatFallsSilentIsGivenUp) {
    startsAndReaches("/silent");
    loop.advance(seconds(14));
    EXPECT_EQ(outcome, "");
    loop.advance(seconds(1));
    EXPECT_TRUE(settleUntil([&] { return !outcome.empty(); }));
    EXPECT_EQ(outcome, "failed");
    expectTheConnectionIsFree();
}

TEST_F(SoupHTTPSessionTest, aCancelledTaskEndsItsTransfer) {
    for (const char* path : {"/silent", "/trickle"}) {
        server.requests.clear();
        startsAndReaches(path);
        task.cancel();
        EXPECT_TRUE(settleUntil([&] { return !outcome.empty(); }));
        EXPECT_EQ(outcome, "cancelled");
        expectTheConnectionIsFree();
    }
}

TEST_F(SoupHTTPSessionTest, theEndOfTheOwnerEndsItsTransfer) {
    for (const char* path : {"/silent", "/trickle"}) {
        server.requests.clear();
        {
            TaskScope owner(loop);
            HTTPRequest request{.url = server.url(path), .requestTimeout = seconds(15)};
            owner.spawn(outcomeOf(&session, std::move(request), 100, &outcome, &answer));
            ASSERT_TRUE(settleUntil([&] { return server.requests.size() == 1; }));
        }
        EXPECT_EQ(loop.pendingCount(), 0u);
        expectTheConnectionIsFree();
    }
}

TEST_F(SoupHTTPSessionTest, anInvalidatedSessionCancelsWhatRunsAndWhatComes) {
    startsAndReaches("/silent");
    session.invalidateAndCancel();
    EXPECT_TRUE(settleUntil([&] { return !outcome.empty(); }));
    EXPECT_EQ(outcome, "cancelled");
    EXPECT_TRUE(settleUntil([&] { return server.isLeft(); }));
    EXPECT_EQ(requested("/status/200"), "cancelled");
    EXPECT_THAT(server.requests, SizeIs(1));
}

TEST_F(SoupHTTPSessionTest, oneHostSeesOneConnectionAtATime) {
    startsAndReaches("/silent");
    std::string second;
    Answer ignored;
    scope.spawn(outcomeOf(&session, {.url = server.url("/status/200")}, 10, &second, &ignored));
    for (int i = 0; i < 50; ++i) settleUntil([] { return true; });
    EXPECT_THAT(server.requests, SizeIs(1));
    task.cancel();
    EXPECT_TRUE(settleUntil([&] { return !second.empty(); }));
    EXPECT_EQ(second, "200 6");
}

}  // namespace
}  // namespace quillmar
