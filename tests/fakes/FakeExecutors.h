#pragma once
#include <deque>

#include "async/Executor.h"

namespace quillmar {

/// Runs each job at once, on the caller's thread.
class InlineExecutor final : public Executor {
public:
    void submit(Job job) override { job(); }
};

/// Keeps the jobs until the test releases them, or runs each at once while told so.
class HeldExecutor final : public Executor {
public:
    bool runsAtOnce = false;

    void submit(Job job) override {
        if (runsAtOnce) {
            job();
        } else {
            jobs_.push_back(std::move(job));
        }
    }
    std::size_t heldCount() const { return jobs_.size(); }
    void releaseOne() {
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        job();
    }
    void releaseAll() {
        while (!jobs_.empty()) releaseOne();
    }

private:
    std::deque<Job> jobs_;
};

}  // namespace quillmar
