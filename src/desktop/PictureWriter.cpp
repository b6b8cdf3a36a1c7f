#include "desktop/PictureWriter.h"

#include <algorithm>
#include <system_error>

#include "diagnostics/Log.h"
#include "modes/WallpaperApplicationError.h"

namespace quillmar {

void PictureWriter::writeBehind(std::filesystem::path file, SharedPixels pixels) {
    std::erase_if(waiting_, [&](const Job& job) { return job.file == file; });
    if (waiting_.size() == maximumWaiting) waiting_.pop_front();
    CacheFileLease lease(cacheFiles_, file);
    waiting_.push_back({std::move(file), std::move(pixels), std::move(lease)});
    if (!std::exchange(isDraining_, true)) tasks_.spawn(drain());
}

Task<void> PictureWriter::drain() {
    while (!waiting_.empty()) {
        Job job = std::move(waiting_.front());
        waiting_.pop_front();
        running_ = job.file;
        try {
            co_await encode(std::move(job.file), std::move(job.pixels));
        } catch (const std::exception&) {
            logWarning("A picture that is shown could not be kept in the cache.", "wallpaper",
                       std::current_exception());
        }
        running_.clear();
        progress_.resumeAll();
    }
    isDraining_ = false;
}

Task<void> PictureWriter::write(std::filesystem::path file, SharedPixels pixels) {
    const CacheFileLease lease(cacheFiles_, file);
    std::erase_if(waiting_, [&](const Job& job) { return job.file == file; });
    co_await encode(std::move(file), std::move(pixels));
}

Task<void> PictureWriter::encode(std::filesystem::path file, SharedPixels pixels) {
    co_await executor_.run([encoding = &encoding_, file, pixels = std::move(pixels)] {
        try {
            encoding->writePng(*pixels, file);
        } catch (const std::system_error& error) {
            throw WallpaperApplicationError(WallpaperApplicationError::Case::cacheWriteFailed, file.string(),
                                            error.code().message());
        }
    });
    if (writtenHandler_) co_await writtenHandler_(std::move(file));
}

Task<void> PictureWriter::settled(std::filesystem::path file) {
    while (isPending(file)) co_await progress_.wait();
}

bool PictureWriter::isPending(const std::filesystem::path& file) const {
    return running_ == file || std::ranges::find(waiting_, file, &Job::file) != waiting_.end();
}

}  // namespace quillmar
