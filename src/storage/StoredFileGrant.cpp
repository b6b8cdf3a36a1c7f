#include "storage/StoredFileGrant.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <system_error>

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

/// What tells a file from every other one, whatever its name.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    /// Nanoseconds since 1970, where the file system knows: the inode of a deleted file is soon another
    /// one's.
    std::optional<std::int64_t> born;

    bool operator==(const FileIdentity&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("device", self.device).required("inode", self.inode).optional("born", self.born);
    }
};

struct StoredFileGrant {
    Url uri = Url::fromFilePath("/");
    FileIdentity identity;

    static void describe(auto& self, auto& io) {
        io.required("uri", self.uri).required("identity", self.identity);
    }
};

/// Nothing, with the reason in `errno`, when there is no such file. Links are followed: what they lead to is
/// what was chosen.
std::optional<FileIdentity> identityOf(const fs::path& file) {
    struct statx status{};
    if (::statx(AT_FDCWD, file.c_str(), 0, STATX_INO | STATX_BTIME, &status) != 0) return std::nullopt;
    FileIdentity identity{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino, {}};
    if (status.stx_mask & STATX_BTIME) {
        // Unsigned, since a damaged file system may claim a time that overflows: equality is all that counts.
        const auto seconds = static_cast<std::uint64_t>(status.stx_btime.tv_sec);
        identity.born = static_cast<std::int64_t>(seconds * 1'000'000'000 + status.stx_btime.tv_nsec);
    }
    return identity;
}

std::optional<fs::path> renamedWithinFolder(const fs::path& file, const FileIdentity& wanted) {
    std::error_code failure;
    for (fs::directory_iterator entry(file.parent_path(), failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (identityOf(entry->path()) == wanted) return entry->path();
    }
    return std::nullopt;
}

std::optional<StoredFileGrant> decoded(const Bytes& bytes) {
    try {
        return json::decode<StoredFileGrant>({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    } catch (const JsonRecordError&) {  // a grant of another system, or none at all
        return std::nullopt;
    }
}

}  // namespace

Bytes makeStoredFileGrant(const fs::path& file) {
    const fs::path place = fs::absolute(file);
    const auto identity = identityOf(place);
    if (!identity) throw std::system_error(errno, std::generic_category(), place.string());
    const StoredFileGrant grant{Url::fromFilePath(place), *identity};
    const std::string text = json::encodeCompact(grant);
    return Bytes(text.begin(), text.end());
}

std::optional<fs::path> resolveStoredFileGrant(const Bytes& bytes) {
    const auto grant = decoded(bytes);
    const auto file = grant ? grant->uri.filePath() : std::nullopt;
    if (!file) return std::nullopt;
    // What may not be looked at is still there: that the access is denied is for the reader to find.
    if (identityOf(*file) || errno == EACCES) return file;
    return renamedWithinFolder(*file, grant->identity);
}

Task<std::optional<Bytes>> grantIfThere(Executor& files, std::filesystem::path file) {
    co_return co_await files.run([file = std::move(file)]() -> std::optional<Bytes> {
        try {
            return makeStoredFileGrant(file);
        } catch (const std::system_error&) {
            return std::nullopt;
        }
    });
}

}  // namespace quillmar
