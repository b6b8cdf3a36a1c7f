#include "render/ReadAhead.h"

#include <algorithm>
#include <utility>

namespace quillmar {
namespace {

/// Large enough that handing a batch over costs nothing against filling it.
constexpr std::size_t aimedBatchBytes = 256 * 1024;
constexpr std::size_t maximumWaiting = 3;

}  // namespace

ReadAhead::ReadAhead(std::unique_ptr<RowSource> source, std::size_t rowBytes, int rowCount)
    : source_(std::move(source)),
      rowBytes_(rowBytes),
      batchBytes_(std::max<std::size_t>(aimedBatchBytes / rowBytes, 1) * rowBytes),
      rowsLeft_(rowCount),
      thread_([this] { read(); }) {}

ReadAhead::~ReadAhead() {
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

std::span<const std::uint8_t> ReadAhead::nextRow() {
    if (used_ == current_.size()) {
        std::unique_lock lock(mutex_);
        if (!current_.empty()) empty_.push_back(std::move(current_));
        changed_.wait(lock, [this] { return !full_.empty() || failure_; });
        if (full_.empty()) std::rethrow_exception(failure_);
        current_ = std::move(full_.front());
        full_.pop_front();
        used_ = 0;
        lock.unlock();
        changed_.notify_all();
    }
    used_ += rowBytes_;
    return std::span(current_).subspan(used_ - rowBytes_, rowBytes_);
}

void ReadAhead::read() {
    try {
        for (Bytes batch; rowsLeft_ > 0;) {
            const std::size_t rows = std::min(batchBytes_ / rowBytes_, static_cast<std::size_t>(rowsLeft_));
            batch.resize(rows * rowBytes_);
            for (std::size_t at = 0; at < batch.size(); at += rowBytes_)
                std::ranges::copy(source_->nextRow(), batch.data() + at);
            rowsLeft_ -= static_cast<int>(rows);
            if (!offer(batch)) break;
        }
    } catch (...) {
        const std::lock_guard lock(mutex_);
        failure_ = std::current_exception();
    }
    source_.reset();
    changed_.notify_all();
}

/// Exchanges a filled batch for one that may be filled. No when nobody waits for it any more.
bool ReadAhead::offer(Bytes& batch) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return full_.size() < maximumWaiting || isStopping_; });
    if (isStopping_) return false;
    full_.push_back(std::move(batch));
    batch = {};
    if (!empty_.empty()) {
        batch = std::move(empty_.back());
        empty_.pop_back();
    }
    lock.unlock();
    changed_.notify_all();
    return true;
}

}  // namespace quillmar
