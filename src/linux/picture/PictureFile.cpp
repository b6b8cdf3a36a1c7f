#include "linux/picture/PictureFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

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

bool isJpeg(int descriptor) {
    std::array<std::uint8_t, 3> start{};
    return ::pread(descriptor, start.data(), start.size(), 0) == 3 && start[0] == 0xff && start[1] == 0xd8 &&
           start[2] == 0xff;
}

}  // namespace

std::unique_ptr<PictureDecoder> openPictureFile(const std::filesystem::path& file, PictureModule& module) {
    const Descriptor descriptor(file);
    struct stat status{};
    if (::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode))
        throw PictureDecodingError("This is no regular file.");
    if (status.st_size == 0) throw PictureDecodingError("The file is empty.");
    std::unique_ptr<PictureDecoder> decoder;
    if (isJpeg(descriptor.get())) decoder = JpegDecoder::open(descriptor.get());
    return decoder ? std::move(decoder) : module.open(descriptor.get());
}

}  // namespace quillmar
