#pragma once
#include <cstdint>
#include <memory>
#include <span>

#include "base/FileDescriptor.h"
#include "base/HexColor.h"
#include "base/PixelRect.h"

namespace quillmar {

/// A picture in memory that another process, the window server among them, can be handed without a copy: rows
/// from the top without gaps, four bytes a pixel: blue, green, red and one that is not used. Whoever makes it
/// fills it and shares it then as constant. The memory can be neither shrunk nor grown by anybody, so that a
/// process it was handed to cannot take it away under a reader; such a process may still write to it, so what
/// it wrote is looked at as pixels and as nothing else. Any thread.
class PixelBuffer {
public:
    static constexpr std::size_t pixelBytes = 4;
    /// No window server has a larger side.
    static constexpr int maximumSide = 32768;

    /// Every pixel black. Throws `std::system_error` when there is no memory, `std::invalid_argument` for a
    /// side below 1 or above `maximumSide`.
    explicit PixelBuffer(PixelSize size);
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;
    ~PixelBuffer();

    PixelSize size() const { return size_; }
    std::size_t rowBytes() const { return static_cast<std::size_t>(size_.width) * pixelBytes; }
    std::size_t byteCount() const { return rowBytes() * static_cast<std::size_t>(size_.height); }
    std::span<const std::uint8_t> bytes() const { return {data_, byteCount()}; }
    std::span<std::uint8_t> bytes() { return {data_, byteCount()}; }
    std::span<const std::uint8_t> row(int y) const {
        return bytes().subspan(static_cast<std::size_t>(y) * rowBytes(), rowBytes());
    }
    std::span<std::uint8_t> row(int y) {
        return bytes().subspan(static_cast<std::size_t>(y) * rowBytes(), rowBytes());
    }
    /// Of the memory, `byteCount()` long; stays the buffer's.
    int descriptor() const { return memory_.get(); }

    void fill(RgbColor color);

private:
    PixelSize size_;
    FileDescriptor memory_;
    std::uint8_t* data_ = nullptr;
};

/// A finished picture, shared by all who show or write it.
using SharedPixels = std::shared_ptr<const PixelBuffer>;

}  // namespace quillmar
