#pragma once
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "async/Executor.h"

namespace quillmar {

/// A few threads for all background work. A thread is made when a job finds none free, up to the limit, and
/// ends after idling, so that an idle program has none. Destroying the pool drops the jobs that have not
/// begun and waits for those that run.
class ThreadPool final : public Executor {
public:
    /// Makes no thread yet. `maximumThreads` is at least 1.
    explicit ThreadPool(unsigned maximumThreads);
    ~ThreadPool() override;
    void submit(Job job) override;

private:
    void work();
    void joinEnded(std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::condition_variable wakeUp_;
    std::deque<Job> jobs_;
    std::vector<std::thread> threads_;
    std::vector<std::thread::id> ended_;
    unsigned maximumThreads_;
    unsigned idle_ = 0;
    bool isStopping_ = false;
};

/// Jobs of one service, one after the other in the order of their submission, on the threads of a pool.
/// Destroying it drops the jobs that have not begun and waits for the one that runs.
class SerialExecutor final : public Executor {
public:
    /// `pool` outlives this.
    explicit SerialExecutor(Executor& pool);
    ~SerialExecutor() override;
    void submit(Job job) override;

private:
    struct Queue;
    static void runNext(const std::shared_ptr<Queue>& queue);
    std::shared_ptr<Queue> queue_;
};

}  // namespace quillmar
