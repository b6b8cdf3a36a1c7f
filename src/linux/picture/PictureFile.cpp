#include "linux/picture/PictureFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "linux/picture/BmpDecoder.h"
#include "linux/picture/JpegDecoder.h"
#include "linux/picture/PictureModule.h"

namespace quillmar {
namespace {

class Descriptor {
public:
    explicit Descriptor(const std::filesystem::path& file)
        // Non-blocking, because a pipe without a writer would hold the open itself.
        : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
        if (descriptor_ < 0) throw PictureDecodingError(std::generic_category().message(errno));
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { ::close(descriptor_); }
    int get() const { return descriptor_; }

private:
    int descriptor_;
};

bool startsWith(int descriptor, std::string_view expected) {
    std::array<char, 4> start{};
    return ::pread(descriptor, start.data(), start.size(), 0) == static_cast<ssize_t>(start.size()) &&
           std::string_view(start.data(), start.size()).starts_with(expected);
}

}  // namespace

std::unique_ptr<PictureDecoder> openPictureFile(const std::filesystem::path& file, PictureModule& module) {
    const Descriptor descriptor(file);
    struct stat status{};
    if (::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode))
        throw PictureDecodingError("This is no regular file.");
    if (status.st_size == 0) throw PictureDecodingError("The file is empty.");
    if (startsWith(descriptor.get(), "BM")) return std::make_unique<BmpDecoder>(descriptor.get());
    if (startsWith(descriptor.get(), "\xff\xd8\xff")) {
        if (auto decoder = JpegDecoder::open(descriptor.get())) return decoder;
    }
    return module.open(descriptor.get());
}

}  // namespace quillmar
