#pragma once
#include <filesystem>
#include <stop_token>
#include <string>

#include "imports/MediaImportRepository.h"

namespace quillmar {

/// A file that is being imported, before it has its place: gone with its owner. Any thread; it waits for the
/// disk.
class StagedFile {
public:
    /// Takes over a file that is there.
    explicit StagedFile(std::filesystem::path path) : path_(std::move(path)) {}
    StagedFile(StagedFile&& other) noexcept : path_(std::exchange(other.path_, {})) {}
    StagedFile& operator=(StagedFile&& other) noexcept {
        std::swap(path_, other.path_);
        return *this;
    }
    ~StagedFile() { remove(); }

    const std::filesystem::path& path() const { return path_; }
    void remove();
    /// Gives it its place, in place of a file that may be there. Throws `std::system_error`.
    void moveTo(const std::filesystem::path& destination);
    /// Leaves it to somebody else.
    std::filesystem::path release() { return std::exchange(path_, {}); }

private:
    std::filesystem::path path_;
};

/// What is to be copied, and where to.
struct StagingOrder {
    Uuid id;
    Url source;
    MediaImportKind kind;
    MediaImportLimits limits;
    std::filesystem::path cacheRoot;
    std::function<std::optional<std::int64_t>(const std::filesystem::path&)> availableCapacity;
    std::stop_token stop;
};

struct StagedCopy {
    StagedFile file;
    std::filesystem::path destination;
};

/// Copies a chosen file into the folder for files that are being imported; its content is not looked at.
/// Throws `MediaImportError`, and `CancellationError` soon after a stop was asked for.
StagedCopy copyToStaging(const StagingOrder& order);

/// The folder that imported files of a kind lie in, below the cache root.
const char* importFolderName(MediaImportKind kind);
/// What their names begin with.
inline constexpr std::string_view importPrefix = "import-";

/// Whether the file begins as a PDF document does. Throws `std::system_error`.
bool beginsAsPDF(const std::filesystem::path& file);

}  // namespace quillmar
