#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "async/Executor.h"
#include "imports/MediaImport.h"
#include "platform/PictureRendering.h"
#include "storage/CacheFileProtection.h"

namespace quillmar {

class MediaImportClaims;

/// How large a chosen file may be, and what must stay free on the disk. Bytes.
struct MediaImportLimits {
    std::int64_t maximumImageBytes = 536870912;
    std::int64_t maximumVideoBytes = 21474836480;
    std::int64_t maximumPDFBytes = 2147483648;
    std::int64_t freeSpaceReserveBytes = 67108864;

    std::int64_t maximumBytes(MediaImportKind kind) const;
};

/// How many bytes this user may still write where `folder` lies; nothing if that is not known. Any thread.
std::optional<std::int64_t> availableCapacity(const std::filesystem::path& folder);

/// Keeps the copies under "Images", "Videos" and "PDFs" of the cache, named by their content's SHA-256, so
/// that a file that is imported twice is there once. A copy grows in "MediaImportStaging". Main thread.
class MediaImportRepository final : public MediaImportStoring {
public:
    /// Whether the system can play a video file.
    using VideoCheck = std::function<Task<bool>(std::filesystem::path)>;

    struct Services {
        Executor& copying;   ///< many at a time: copies take long
        Executor& executor;  ///< a serial one of this repository alone, for the claims
        PictureRendering& rendering;
        CacheFileProtection& cacheFiles;
        std::filesystem::path cacheRoot;  ///< made when it is missing
        VideoCheck isPlayable = {};       ///< without one no video is accepted
        MediaImportLimits limits = {};
        std::function<std::optional<std::int64_t>(const std::filesystem::path&)> availableCapacity =
            &quillmar::availableCapacity;
    };
    explicit MediaImportRepository(Services services);
    ~MediaImportRepository() override;

    Task<PreparedMediaImport> prepare(Url source, MediaImportKind kind) override;
    Task<CommittedMediaImport> commit(PreparedMediaImport prepared) override;
    Task<void> acceptClaim(CommittedMediaImport committed) override;
    Task<void> releaseClaim(CommittedMediaImport committed) override;
    Task<void> removeImportedFile(std::filesystem::path file) override;
    Task<void> discard(PreparedMediaImport prepared) override;

private:
    Task<void> checkContent(Url source, MediaImportKind kind, std::filesystem::path staging);

    Services services_;
    std::shared_ptr<MediaImportClaims> claims_;  ///< touched on the executor alone
};

}  // namespace quillmar
