#include "imports/MediaImportRepository.h"

#include <sys/statvfs.h>

#include <stop_token>
#include <system_error>

#include "imports/MediaImportClaims.h"
#include "imports/MediaImportError.h"
#include "platform/PictureRenderingError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Case = MediaImportError::Case;

/// Ends a copy with the task that waits for it, however that ends.
class CopyEnd {
public:
    explicit CopyEnd(std::stop_token task) : onStop_(std::move(task), [this] { source_.request_stop(); }) {}
    CopyEnd(const CopyEnd&) = delete;
    CopyEnd& operator=(const CopyEnd&) = delete;
    ~CopyEnd() { source_.request_stop(); }
    std::stop_token token() const { return source_.get_token(); }

private:
    std::stop_source source_;
    std::stop_callback<std::function<void()>> onStop_;
};

}  // namespace

std::int64_t MediaImportLimits::maximumBytes(MediaImportKind kind) const {
    switch (kind) {
        case MediaImportKind::image: return maximumImageBytes;
        case MediaImportKind::video: return maximumVideoBytes;
        case MediaImportKind::pdf: return maximumPDFBytes;
    }
    return maximumImageBytes;
}

std::optional<std::int64_t> availableCapacity(const fs::path& folder) {
    struct statvfs status{};
    if (::statvfs(folder.c_str(), &status) != 0) return std::nullopt;
    // Some network file systems say nothing about their room.
    if (status.f_blocks == 0) return std::nullopt;
    return static_cast<std::int64_t>(status.f_bavail) * static_cast<std::int64_t>(status.f_frsize);
}

MediaImportRepository::MediaImportRepository(Services services)
    : services_(std::move(services)),
      claims_(std::make_shared<MediaImportClaims>(services_.cacheFiles, services_.cacheRoot)) {}
MediaImportRepository::~MediaImportRepository() = default;

Task<PreparedMediaImport> MediaImportRepository::prepare(Url source, MediaImportKind kind) {
    const Uuid id = Uuid::random();
    const CopyEnd end((co_await currentContext()).stop);
    StagingOrder order{.id = id,
                       .source = source,
                       .kind = kind,
                       .limits = services_.limits,
                       .cacheRoot = services_.cacheRoot,
                       .availableCapacity = services_.availableCapacity,
                       .stop = end.token()};
    StagedCopy copy =
        co_await services_.copying.run([order = std::move(order)] { return copyToStaging(order); });
    std::exception_ptr failure;
    try {
        co_await throwIfCancelled();
        co_await checkContent(source, kind, copy.file.path());
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        // To remove a large file takes the disk a while.
        co_await services_.copying.run([file = std::move(copy.file)]() mutable { file.remove(); });
        std::rethrow_exception(failure);
    }
    co_return PreparedMediaImport{id, std::move(source), copy.file.release(), std::move(copy.destination)};
}

Task<void> MediaImportRepository::checkContent(Url source, MediaImportKind kind, fs::path staging) {
    const auto requireThat = [&](bool isValid, Case otherwise) {
        if (!isValid) throw MediaImportError(otherwise, source);
    };
    try {
        switch (kind) {
            case MediaImportKind::image: {
                const bool isValid = co_await services_.rendering.isPicture(staging);
                requireThat(isValid, Case::invalidImage);
                break;
            }
            case MediaImportKind::pdf: {
                const bool isValid =
                    co_await services_.copying.run([staging] { return beginsAsPDF(staging); });
                requireThat(isValid, Case::invalidPDF);
                break;
            }
            case MediaImportKind::video: {
                const bool isValid = services_.isPlayable && co_await services_.isPlayable(staging);
                requireThat(isValid, Case::invalidVideo);
                break;
            }
        }
    } catch (const PictureRenderingError& error) {
        const PictureRenderingError told = error.about(source.displayPath());
        throw MediaImportError::importFailed(source, std::make_exception_ptr(told));
    } catch (const std::system_error& error) {
        throw MediaImportError::importFailed(source, error.code());
    }
}

Task<CommittedMediaImport> MediaImportRepository::commit(PreparedMediaImport prepared) {
    if (co_await isCancelled()) {
        co_await discard(std::move(prepared));
        throw CancellationError();
    }
    try {
        co_return co_await services_.executor.run(
            [claims = claims_, prepared] { return claims->commit(prepared); });
    } catch (const std::system_error& error) {
        throw MediaImportError::importFailed(prepared.sourceURL, error.code());
    }
}

Task<void> MediaImportRepository::acceptClaim(CommittedMediaImport committed) {
    co_await services_.executor.run(
        [claims = claims_, committed = std::move(committed)] { claims->end(committed, true); });
}

Task<void> MediaImportRepository::releaseClaim(CommittedMediaImport committed) {
    co_await services_.executor.run(
        [claims = claims_, committed = std::move(committed)] { claims->end(committed, false); });
}

Task<void> MediaImportRepository::removeImportedFile(fs::path file) {
    co_await services_.executor.run(
        [claims = claims_, file = std::move(file)] { claims->removeImportedFile(file); });
}

Task<void> MediaImportRepository::discard(PreparedMediaImport prepared) {
    co_await services_.copying.run(
        [file = StagedFile(std::move(prepared.staging))]() mutable { file.remove(); });
}

}  // namespace quillmar
