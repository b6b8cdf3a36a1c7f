#pragma once
#include <algorithm>
#include <cstdint>
#include <span>

#include "base/Bytes.h"

namespace quillmar {

/// Where bytes go as they come into being.
class ByteOutput {
public:
    virtual ~ByteOutput() = default;
    virtual void append(std::span<const std::uint8_t> bytes) = 0;
    /// Replaces bytes that were appended before.
    virtual void overwrite(std::size_t offset, std::span<const std::uint8_t> bytes) = 0;
};

/// Keeps them.
class MemoryOutput final : public ByteOutput {
public:
    Bytes bytes;

    void append(std::span<const std::uint8_t> more) override {
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    void overwrite(std::size_t offset, std::span<const std::uint8_t> replacement) override {
        std::copy(replacement.begin(), replacement.end(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    }
};

}  // namespace quillmar
