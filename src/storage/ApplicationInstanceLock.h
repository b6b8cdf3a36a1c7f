#pragma once
#include <filesystem>
#include <memory>
#include <string>

#include "base/FileDescriptor.h"

namespace quillmar {

/// The lock that the first instance holds for its whole life. The file stays behind, empty: only the lock
/// counts.
class ApplicationInstanceLock {
public:
    /// Takes the lock "<bundle identifier>.instance.lock" in `directory`. Empty when another instance holds
    /// it and when it cannot be taken for any other reason.
    static std::unique_ptr<ApplicationInstanceLock> take(const std::filesystem::path& directory,
                                                         const std::string& bundleIdentifier);

    ApplicationInstanceLock(const ApplicationInstanceLock&) = delete;
    ApplicationInstanceLock& operator=(const ApplicationInstanceLock&) = delete;

private:
    explicit ApplicationInstanceLock(FileDescriptor file) : file_(std::move(file)) {}
    FileDescriptor file_;
};

}  // namespace quillmar
