#include "updates/FileSignature.h"

#include <fcntl.h>
#include <sodium.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "base/FileDescriptor.h"

namespace quillmar {
namespace {

static_assert(publicKeyBytes == crypto_sign_PUBLICKEYBYTES && signatureBytes == crypto_sign_BYTES);

[[noreturn]] void throwErrno() { throw std::system_error(errno, std::generic_category()); }

/// A whole file in memory without a copy: the algorithm wants it in one piece.
class MappedFile {
public:
    explicit MappedFile(const std::filesystem::path& file) {
        const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        struct stat status{};
        if (!descriptor || ::fstat(descriptor.get(), &status) != 0) throwErrno();
        size_ = static_cast<std::size_t>(status.st_size);
        if (size_ == 0) return;
        void* start = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, descriptor.get(), 0);
        if (start == MAP_FAILED) throwErrno();
        start_ = static_cast<const std::uint8_t*>(start);
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile() {
        if (start_) ::munmap(const_cast<std::uint8_t*>(start_), size_);
    }
    const std::uint8_t* start() const { return start_; }
    std::size_t size() const { return size_; }

private:
    const std::uint8_t* start_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace

bool isFileSigned(const std::filesystem::path& file, std::span<const std::uint8_t> signature,
                  std::span<const std::uint8_t> publicKey) {
    if (signature.size() != signatureBytes || publicKey.size() != publicKeyBytes || ::sodium_init() < 0)
        return false;
    const MappedFile content(file);
    return ::crypto_sign_verify_detached(signature.data(), content.start(), content.size(),
                                         publicKey.data()) == 0;
}

}  // namespace quillmar
