#pragma once
#include <deque>
#include <filesystem>
#include <functional>

#include "async/Executor.h"
#include "async/TaskScope.h"
#include "platform/PictureRendering.h"
#include "storage/CacheFileLease.h"

namespace quillmar {

/// Writes generated pictures into their files: behind the showing where nobody waits for the file. Main
/// thread; the work runs on the executor.
class PictureWriter {
public:
    /// Of more files that wait the one that has waited longest is let go: it can be made again, and its
    /// pixels take memory meanwhile.
    static constexpr std::size_t maximumWaiting = 4;

    PictureWriter(MainLoop& loop, const PictureEncoding& encoding, Executor& executor,
                  const CacheFileProtection& cacheFiles)
        : encoding_(encoding), executor_(executor), cacheFiles_(cacheFiles), tasks_(loop) {}

    /// Is awaited after each file that was written, before the next one is. Replaces the former one.
    void setWrittenHandler(std::function<Task<void>(std::filesystem::path file)> handler) {
        writtenHandler_ = std::move(handler);
    }
    /// Writes the file soon. A failure is logged.
    void writeBehind(std::filesystem::path file, SharedPixels pixels);
    /// Writes the file and waits for it; throws `WallpaperApplicationError`.
    Task<void> write(std::filesystem::path file, SharedPixels pixels);
    /// Waits until nothing is to be written to that file any more.
    Task<void> settled(std::filesystem::path file);

private:
    struct Job {
        std::filesystem::path file;
        SharedPixels pixels;
        CacheFileLease lease;  ///< nobody sweeps what is not there yet
    };
    Task<void> drain();
    Task<void> encode(std::filesystem::path file, SharedPixels pixels);
    bool isPending(const std::filesystem::path& file) const;

    const PictureEncoding& encoding_;
    Executor& executor_;
    const CacheFileProtection& cacheFiles_;
    std::deque<Job> waiting_;
    std::filesystem::path running_;  ///< empty: none
    bool isDraining_ = false;
    std::function<Task<void>(std::filesystem::path)> writtenHandler_;
    WaitList progress_;
    TaskScope tasks_;
};

}  // namespace quillmar
