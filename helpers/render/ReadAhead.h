#pragma once
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "render/PictureDecoder.h"

namespace quillmar {

/// Reads another source's rows on a thread of its own, a few ahead of the one who asks for them. The source
/// is read and destroyed on that thread alone; destroying this object ends and joins it.
class ReadAhead final : public RowSource {
public:
    /// `rowCount` rows of `rowBytes` each are read in all.
    ReadAhead(std::unique_ptr<RowSource> source, std::size_t rowBytes, int rowCount);
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead() override;

    std::span<const std::uint8_t> nextRow() override;

private:
    void read();
    bool offer(Bytes& batch);

    std::unique_ptr<RowSource> source_;
    const std::size_t rowBytes_;
    const std::size_t batchBytes_;
    int rowsLeft_;  ///< of the reading thread
    Bytes current_;
    std::size_t used_ = 0;  ///< bytes of `current_` that were handed out

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Bytes> full_;
    std::vector<Bytes> empty_;
    std::exception_ptr failure_;
    bool isStopping_ = false;
    std::thread thread_;
};

}  // namespace quillmar
