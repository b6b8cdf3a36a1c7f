#pragma once
#include <stdexcept>
#include <vector>

#include "async/Sleep.h"
#include "platform/HTTPSession.h"

namespace quillmar {

/// A server that does as the test says.
class FakeHTTPSession final : public HTTPSession {
public:
    explicit FakeHTTPSession(const MainLoop& loop) : loop_(loop), began_(loop.now()) {}

    /// One status after the other; the last one stays.
    void answers(std::vector<int> statuses) { statuses_ = std::move(statuses); }
    /// Every request waits until its time is over.
    void neverAnswers() { statuses_.clear(); }

    std::vector<HTTPRequest> requests;
    std::vector<std::int64_t> secondsOfRequests;  ///< since the fake was made
    int cancelledCount = 0;
    bool isInvalidated = false;

    Task<HTTPResponse> send(HTTPRequest request, std::size_t) override {
        requests.push_back(request);
        secondsOfRequests.push_back(std::chrono::floor<std::chrono::seconds>(loop_.now() - began_).count());
        if (statuses_.empty()) {
            try {
                co_await sleepFor(request.requestTimeout);
            } catch (const CancellationError&) {
                ++cancelledCount;
                throw;
            }
            throw std::runtime_error("The request timed out.");
        }
        const int status = statuses_.front();
        if (statuses_.size() > 1) statuses_.erase(statuses_.begin());
        co_return HTTPResponse{.status = status};
    }
    void invalidateAndCancel() override { isInvalidated = true; }

private:
    const MainLoop& loop_;
    TimePoint began_;
    std::vector<int> statuses_{200};
};

}  // namespace quillmar
