#pragma once
#include <algorithm>
#include <stdexcept>
#include <vector>

#include "async/Sleep.h"
#include "async/WaitList.h"
#include "platform/HTTPSession.h"

namespace quillmar {

/// What a fake server says to one address.
struct FakeAnswer {
    int status = 200;
    std::string body;
    std::optional<std::string> mimeType;
    std::map<std::string, std::string> headers;
    bool hasLength = true;                        ///< whether it announces how long the body is
    std::optional<std::int64_t> announcedLength;  ///< instead of the true one
    std::optional<std::size_t> breaksOffAt;       ///< the connection is lost after so many bytes
    std::optional<std::size_t> fallsSilentAt;     ///< nothing more comes after so many bytes
};

/// Servers that do as the test says.
class FakeHTTPSession final : public HTTPSession {
public:
    explicit FakeHTTPSession(const MainLoop& loop) : loop_(loop), began_(loop.now()) {}

    /// One status after the other to whatever has no answer of its own; the last one stays.
    void answers(std::vector<int> statuses) { statuses_ = std::move(statuses); }
    /// Every request that has no answer of its own waits until its time is over.
    void neverAnswers() { statuses_.clear(); }
    /// The answer to requests whose URL contains `part`; of several parts that match the longest counts.
    void serves(std::string part, FakeAnswer answer) { served_[std::move(part)] = std::move(answer); }
    /// Requests whose URL contains `part` find nobody.
    void refuses(std::string part) { refused_.push_back(std::move(part)); }
    void accepts(const std::string& part) { std::erase(refused_, part); }
    /// No body goes on until it is let through.
    void hold() { isHeld_ = true; }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

    std::vector<HTTPRequest> requests;
    std::vector<std::int64_t> secondsOfRequests;  ///< since the fake was made
    std::size_t pieceBytes = 16384;               ///< at most so much comes at once
    int cancelledCount = 0;
    int openBodies = 0;
    bool isInvalidated = false;

    Task<HTTPResponse> open(HTTPRequest request) override {
        requests.push_back(request);
        secondsOfRequests.push_back(std::chrono::floor<std::chrono::seconds>(loop_.now() - began_).count());
        const std::string url = request.url.string();
        for (const std::string& part : refused_) {
            if (url.contains(part)) throw std::runtime_error("Connection refused");
        }
        if (const FakeAnswer* answer = answerTo(url)) co_return responseOf(*answer, request);
        if (statuses_.empty()) {
            co_await silence(request.requestTimeout);
        }
        const int status = statuses_.front();
        if (statuses_.size() > 1) statuses_.erase(statuses_.begin());
        co_return responseOf({.status = status}, request);
    }
    void invalidateAndCancel() override { isInvalidated = true; }

private:
    class Body final : public HTTPBody {
    public:
        Body(FakeHTTPSession& session, FakeAnswer answer, Duration patience)
            : session_(session), answer_(std::move(answer)), patience_(patience) {
            ++session_.openBodies;
        }
        Body(const Body&) = delete;
        Body& operator=(const Body&) = delete;
        ~Body() override { --session_.openBodies; }

        Task<Bytes> read(std::size_t maximumBytes) override {
            while (session_.isHeld_) co_await session_.held_.wait();
            if ((co_await currentContext()).stop.stop_requested()) throw CancellationError();
            std::size_t end =
                std::min(answer_.body.size(), sent_ + std::min(maximumBytes, session_.pieceBytes));
            if (answer_.breaksOffAt) end = std::min(end, *answer_.breaksOffAt);
            if (answer_.fallsSilentAt) end = std::min(end, *answer_.fallsSilentAt);
            if (end == sent_ && answer_.breaksOffAt == sent_)
                throw std::runtime_error("Connection terminated");
            if (end == sent_ && answer_.fallsSilentAt == sent_) co_await session_.silence(patience_);
            Bytes piece(answer_.body.begin() + static_cast<std::ptrdiff_t>(sent_),
                        answer_.body.begin() + static_cast<std::ptrdiff_t>(end));
            sent_ = end;
            co_return piece;
        }

    private:
        FakeHTTPSession& session_;
        FakeAnswer answer_;
        Duration patience_;
        std::size_t sent_ = 0;
    };

    const FakeAnswer* answerTo(const std::string& url) const {
        const FakeAnswer* found = nullptr;
        std::size_t length = 0;
        for (const auto& [part, answer] : served_) {
            if (part.size() < length || !url.contains(part)) continue;
            found = &answer;
            length = part.size();
        }
        return found;
    }
    HTTPResponse responseOf(const FakeAnswer& answer, const HTTPRequest& request) {
        HTTPResponse response{
            .status = answer.status, .headers = answer.headers, .mimeType = answer.mimeType};
        if (answer.announcedLength) {
            response.expectedContentLength = answer.announcedLength;
        } else if (answer.hasLength) {
            response.expectedContentLength = std::ssize(answer.body);
        }
        response.body = std::make_unique<Body>(*this, answer, request.requestTimeout);
        return response;
    }
    Task<void> silence(Duration patience) {
        try {
            co_await sleepFor(patience);
        } catch (const CancellationError&) {
            ++cancelledCount;
            throw;
        }
        throw std::runtime_error("The request timed out.");
    }

    const MainLoop& loop_;
    TimePoint began_;
    std::vector<int> statuses_{200};
    std::map<std::string, FakeAnswer> served_;
    std::vector<std::string> refused_;
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
