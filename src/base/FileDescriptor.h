#pragma once
#include <unistd.h>

#include <utility>

namespace quillmar {

/// Owns an open file of the process and closes it at its end.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Takes over what a system call returned; a negative number is none.
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileDescriptor() { reset(); }

    explicit operator bool() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }
    /// Closes it now.
    void reset() {
        if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
    }
    /// Hands it to somebody else to close.
    int release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_ = -1;
};

}  // namespace quillmar
