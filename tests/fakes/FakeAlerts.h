#pragma once
#include <deque>
#include <vector>

#include "async/WaitList.h"
#include "platform/AlertPresenting.h"

namespace quillmar {

/// A user who answers alerts with the buttons that the test chooses, and leaves them open when it chooses
/// none.
class FakeAlerts final : public AlertPresenting {
public:
    std::vector<Alert> shown;
    void answerNextWith(std::size_t button) {
        answers_.push_back(button);
        answered_.resumeAll();
    }
    Task<std::size_t> runModal(Alert alert) override {
        shown.push_back(std::move(alert));
        while (answers_.empty()) co_await answered_.wait();
        const std::size_t answer = answers_.front();
        answers_.pop_front();
        co_return answer;
    }

private:
    std::deque<std::size_t> answers_;
    WaitList answered_;
};

}  // namespace quillmar
