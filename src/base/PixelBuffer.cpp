#include "base/PixelBuffer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace quillmar {

namespace {

[[noreturn]] void throwNoMemory() {
    throw std::system_error(errno, std::generic_category(), "memory for a picture");
}

}  // namespace

PixelBuffer::PixelBuffer(PixelSize size) : size_(size) {
    if (size.width < 1 || size.height < 1 || size.width > maximumSide || size.height > maximumSide) {
        throw std::invalid_argument("no picture has such a size");
    }
    memory_ = FileDescriptor(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory_ || ::ftruncate(memory_.get(), static_cast<off_t>(byteCount())) != 0 ||
        ::fcntl(memory_.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
        throwNoMemory();
    }
    void* data = ::mmap(nullptr, byteCount(), PROT_READ | PROT_WRITE, MAP_SHARED, memory_.get(), 0);
    if (data == MAP_FAILED) throwNoMemory();
    data_ = static_cast<std::uint8_t*>(data);
}

PixelBuffer::~PixelBuffer() { ::munmap(data_, byteCount()); }

void PixelBuffer::fill(RgbColor color) {
    const std::span<std::uint8_t> first = row(0);
    for (std::size_t x = 0; x < first.size(); x += pixelBytes) {
        first[x] = color.blue;
        first[x + 1] = color.green;
        first[x + 2] = color.red;
        first[x + 3] = 0xff;
    }
    for (int y = 1; y < size_.height; ++y) std::ranges::copy(first, row(y).begin());
}

}  // namespace quillmar
