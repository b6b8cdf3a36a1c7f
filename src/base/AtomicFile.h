#pragma once
#include <sys/types.h>
#include <filesystem>
#include <functional>
#include <string>

#include "base/ByteOutput.h"
#include "base/FileDescriptor.h"
#include "base/FileIdentity.h"
#include "base/Files.h"
#include "base/WallTime.h"

namespace quillmar {

/// A file that is written bit by bit and takes its name only when it is whole: until `commit` the old file,
/// or none, stands there, and without it nothing is left behind. Every operation throws `std::system_error`
/// and waits for the disk.
class AtomicFile final : public ByteOutput {
public:
    AtomicFile(std::filesystem::path file, mode_t mode, Durability durability);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile() override;

    void append(std::span<const std::uint8_t> bytes) override;
    void overwrite(std::size_t offset, std::span<const std::uint8_t> bytes) override;
    void commit();
    /// As `commit`, but only over the file that is expected there, or over none: what another program wrote
    /// meanwhile stays. What is there now; empty where it was not as expected.
    std::optional<FileIdentity> commitOver(const std::optional<FileIdentity>& expected);

private:
    FileIdentity finish();
    void noteCommitted();
    std::filesystem::path file_;
    std::string temporary_;  ///< empty once it has its name
    Durability durability_;
    FileDescriptor descriptor_;
};

/// Removes what such files left beside `file` when their process was killed. Only while nobody writes there.
void removeUnfinished(const std::filesystem::path& file);
/// Removes what such files left in the folder when their process was killed, where `isOurs` says yes to the
/// name that they were to have: those that were last written before `before`, so never one that is written
/// now.
void removeUnfinishedIn(const std::filesystem::path& folder, WallTime before,
                        const std::function<bool(std::string_view)>& isOurs);

}  // namespace quillmar
