#pragma once
#include <sys/types.h>
#include <filesystem>
#include <string>

#include "base/ByteOutput.h"
#include "base/FileDescriptor.h"
#include "base/Files.h"

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

private:
    std::filesystem::path file_;
    std::string temporary_;  ///< empty once it has its name
    Durability durability_;
    FileDescriptor descriptor_;
};

}  // namespace quillmar
