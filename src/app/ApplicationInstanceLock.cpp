#include "app/ApplicationInstanceLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quillmar {

std::unique_ptr<ApplicationInstanceLock> ApplicationInstanceLock::take(const std::filesystem::path& directory,
                                                                       const std::string& bundleIdentifier) {
    const std::filesystem::path file = directory / (bundleIdentifier + ".instance.lock");
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) return nullptr;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return nullptr;
    }
    return std::unique_ptr<ApplicationInstanceLock>(new ApplicationInstanceLock(descriptor));
}

ApplicationInstanceLock::~ApplicationInstanceLock() { ::close(fileDescriptor_); }

}  // namespace quillmar
