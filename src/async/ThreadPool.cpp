#include "async/ThreadPool.h"

#include <algorithm>

namespace quillmar {
namespace {

constexpr std::chrono::seconds idleTime{5};

}  // namespace

ThreadPool::ThreadPool(unsigned maximumThreads) : maximumThreads_(std::max(1u, maximumThreads)) {}

ThreadPool::~ThreadPool() {
    std::deque<Job> dropped;
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
        dropped.swap(jobs_);
    }
    wakeUp_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void ThreadPool::submit(Job job) {
    std::unique_lock lock(mutex_);
    if (isStopping_) return;
    jobs_.push_back(std::move(job));
    if (jobs_.size() <= idle_) {
        wakeUp_.notify_one();
        return;
    }
    joinEnded(lock);
    if (threads_.size() < maximumThreads_) threads_.emplace_back([this] { work(); });
}

void ThreadPool::joinEnded(std::unique_lock<std::mutex>&) {
    for (const std::thread::id id : ended_) {
        const auto thread = std::ranges::find(threads_, id, &std::thread::get_id);
        thread->join();  // it has said its last word: this waits for microseconds
        threads_.erase(thread);
    }
    ended_.clear();
}

void ThreadPool::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        if (jobs_.empty() && !isStopping_) {
            ++idle_;
            wakeUp_.wait_for(lock, idleTime, [this] { return !jobs_.empty() || isStopping_; });
            --idle_;
        }
        if (jobs_.empty()) {
            if (!isStopping_) ended_.push_back(std::this_thread::get_id());
            return;
        }
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        job = nullptr;
        lock.lock();
    }
}

struct SerialExecutor::Queue {
    explicit Queue(Executor& p) : pool(p) {}
    Executor& pool;
    std::mutex mutex;
    std::condition_variable idle;
    std::deque<Job> jobs;
    bool isRunning = false;
    bool isClosed = false;
};

SerialExecutor::SerialExecutor(Executor& pool) : queue_(std::make_shared<Queue>(pool)) {}

SerialExecutor::~SerialExecutor() {
    std::deque<Job> dropped;
    std::unique_lock lock(queue_->mutex);
    queue_->isClosed = true;
    dropped.swap(queue_->jobs);
    queue_->idle.wait(lock, [this] { return !queue_->isRunning; });
}

void SerialExecutor::submit(Job job) {
    {
        const std::lock_guard lock(queue_->mutex);
        queue_->jobs.push_back(std::move(job));
        if (queue_->jobs.size() > 1 || queue_->isRunning) return;
    }
    queue_->pool.submit([queue = queue_] { runNext(queue); });
}

void SerialExecutor::runNext(const std::shared_ptr<Queue>& queue) {
    while (true) {
        Job job;
        {
            const std::lock_guard lock(queue->mutex);
            if (queue->jobs.empty()) return;
            job = std::move(queue->jobs.front());
            queue->jobs.pop_front();
            queue->isRunning = true;
        }
        job();
        job = nullptr;
        const std::lock_guard lock(queue->mutex);
        queue->isRunning = false;
        if (queue->isClosed) {
            queue->idle.notify_all();
            return;
        }
        if (queue->jobs.empty()) return;
    }
}

}  // namespace quillmar
