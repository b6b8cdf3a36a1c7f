#include "storage/ApplicationInstanceLock.h"

#include <fcntl.h>
#include <sys/file.h>

namespace quillmar {

std::unique_ptr<ApplicationInstanceLock> ApplicationInstanceLock::take(const std::filesystem::path& directory,
                                                                       const std::string& bundleIdentifier) {
    const std::filesystem::path file = directory / (bundleIdentifier + ".instance.lock");
    FileDescriptor descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor || ::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) return nullptr;
    return std::unique_ptr<ApplicationInstanceLock>(new ApplicationInstanceLock(std::move(descriptor)));
}

}  // namespace quillmar
